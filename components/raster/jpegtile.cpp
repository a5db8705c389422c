#include "components/raster/jpegtile.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
// libjpeg's headers need the two above first.
#include <jerror.h>
#include <jpeglib.h>

namespace tarn::raster {
namespace {

// What a progressive stream may keep of its coefficients, and how often it may go over them.
constexpr long kMostMemory = 128L << 20;
constexpr int kMostScans = 100;

struct Errors {
  jpeg_error_mgr manager;
  std::jmp_buf back;
};

[[noreturn]] void leave(j_common_ptr codec) {
  std::longjmp(reinterpret_cast<Errors*>(codec->err)->back, 1);
}

void onMessage(j_common_ptr codec, int level) {
  // A stream that ends early is filled up by the library; here it is an error.
  if (level < 0 && codec->err->msg_code == JWRN_JPEG_EOF) leave(codec);
}

void limitScans(j_common_ptr codec) {
  if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > kMostScans) leave(codec);
}

void prepareErrors(Errors& errors) {
  jpeg_std_error(&errors.manager);
  errors.manager.error_exit = leave;
  errors.manager.emit_message = onMessage;
}

/// The part between the setjmp and its jump: no object here has a destructor.
void decodeInto(jpeg_decompress_struct& codec, Span<const uint8_t> stream,
                Span<const uint8_t> tables, JpegColours colours, int width, int height,
                uint8_t* out) {
  if (!tables.empty()) {
    jpeg_mem_src(&codec, tables.data(), tables.size());
    jpeg_read_header(&codec, FALSE);
  }
  jpeg_mem_src(&codec, stream.data(), stream.size());
  jpeg_read_header(&codec, TRUE);
  const int channels = colours == JpegColours::kGray ? 1 : 3;
  if (codec.num_components != channels || codec.image_width < static_cast<JDIMENSION>(width) ||
      codec.image_height < static_cast<JDIMENSION>(height) || codec.image_width > 65500)
    leave(reinterpret_cast<j_common_ptr>(&codec));
  // What the file's directory says about the colours counts, not the stream's own markers.
  codec.jpeg_color_space = colours == JpegColours::kGray  ? JCS_GRAYSCALE
                           : colours == JpegColours::kRgb ? JCS_RGB
                                                          : JCS_YCbCr;
  codec.out_color_space = colours == JpegColours::kGray ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_start_decompress(&codec);
  const bool whole = codec.output_width == static_cast<JDIMENSION>(width);
  const size_t stride = static_cast<size_t>(width) * channels;
  // Streams wider than the piece asked for pass through a line of their own.
  JSAMPROW row = nullptr;
  if (!whole) {
    row = static_cast<JSAMPROW>(
        (*codec.mem->alloc_large)(reinterpret_cast<j_common_ptr>(&codec), JPOOL_IMAGE,
                                  static_cast<size_t>(codec.output_width) * channels));
  }
  while (codec.output_scanline < static_cast<JDIMENSION>(height)) {
    uint8_t* target = out + codec.output_scanline * stride;
    JSAMPROW line = whole ? target : row;
    jpeg_read_scanlines(&codec, &line, 1);
    if (!whole) std::memcpy(target, row, stride);
  }
}

}  // namespace

bool decodeJpegTile(Span<const uint8_t> stream, Span<const uint8_t> tables, JpegColours colours,
                    int width, int height, uint8_t* out) {
  if (stream.empty()) return false;
  jpeg_decompress_struct codec{};
  jpeg_progress_mgr progress{};
  progress.progress_monitor = limitScans;
  Errors errors;
  prepareErrors(errors);
  codec.err = &errors.manager;
  if (setjmp(errors.back) != 0) {
    jpeg_destroy_decompress(&codec);
    return false;
  }
  jpeg_create_decompress(&codec);
  codec.progress = &progress;
  codec.mem->max_memory_to_use = kMostMemory;
  decodeInto(codec, stream, tables, colours, width, height, out);
  jpeg_destroy_decompress(&codec);
  return true;
}

bool encodeJpegTile(const uint8_t* pixels, int width, int height, int channels, int quality,
                    std::vector<uint8_t>& out) {
  jpeg_compress_struct codec{};
  Errors errors;
  prepareErrors(errors);
  codec.err = &errors.manager;
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  if (setjmp(errors.back) != 0) {
    jpeg_destroy_compress(&codec);
    std::free(memory);
    return false;
  }
  jpeg_create_compress(&codec);
  jpeg_mem_dest(&codec, &memory, &size);
  codec.image_width = static_cast<JDIMENSION>(width);
  codec.image_height = static_cast<JDIMENSION>(height);
  codec.input_components = channels;
  codec.in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&codec);
  jpeg_set_quality(&codec, quality, TRUE);
  codec.write_JFIF_header = FALSE;
  jpeg_start_compress(&codec, TRUE);
  while (codec.next_scanline < codec.image_height) {
    auto* line =
        const_cast<JSAMPROW>(pixels + static_cast<size_t>(codec.next_scanline) * width * channels);
    jpeg_write_scanlines(&codec, &line, 1);
  }
  jpeg_finish_compress(&codec);
  out.assign(memory, memory + size);
  jpeg_destroy_compress(&codec);
  std::free(memory);
  return true;
}

}  // namespace tarn::raster
