// TIFF fields and compressed blocks that ask for too much, point to nowhere or go in circles.
#include <cpl_conv.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <limits>

#include "base/text.h"
#include "tests/hostile/hostilefiles.h"
#include "tests/hostile/tiffbytes.h"

namespace tarn::hostile {
namespace {

Case tiff(Expect expect, const std::vector<Field>& changes, uint32_t next = 0) {
  return {"t.tif", expect,
          [=](const std::string& path) { writeBytes(path, tiffOf(changes, next)); }};
}

Case block(Expect expect, const std::vector<Field>& changes, const std::string& bytes) {
  return {"b.tif", expect,
          [=](const std::string& path) { writeBytes(path, tiffOf(changes, bytes)); }};
}

std::vector<Field> tilesOf(uint32_t image, uint32_t tile, uint32_t bytes) {
  return {longField(256, image), longField(257, image), longField(322, tile),
          longField(323, tile),  longField(324, 8),     longField(325, bytes)};
}

std::vector<Field> operator+(std::vector<Field> a, const std::vector<Field>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

/// A chain of `count` directories, each a picture of its own.
std::string manyDirectories(int count) {
  std::string out = tiffOf({}, 1U << 20);
  out.resize(1U << 20);
  const std::string one = tiffOf({longField(254, 1)});
  const size_t directory = one.size() - (2 + 10 * 12 + 4);
  for (int i = 0; i < count; ++i) {
    std::string next = one.substr(directory, 2 + 10 * 12);
    out += next + littleEndian(i + 1 == count ? 0 : out.size() + next.size() + 4, 4);
  }
  return out;
}

/// A good directory, and in it the same field again and again, each time a list as long as the
/// file.
std::string repeatedLists(uint16_t tag) {
  const std::string good = tiffOf({});
  const size_t directory = kPixelsAt + 4096 + 2;
  std::string out = good.substr(0, directory - 2) + littleEndian(9 + 4000, 2);
  out += good.substr(directory, 9 * 12);
  for (int i = 0; i < 4000; ++i)
    out += littleEndian(tag, 2) + littleEndian(kByte, 2) + littleEndian(30 << 20, 4) +
           littleEndian(100, 4);
  return out + std::string(31 << 20, '\1');
}

std::string deflated(size_t zeros) {
  const std::string plain(zeros, '\0');
  size_t bytes = 0;
  void* packed = CPLZLibDeflate(plain.data(), plain.size(), 9, nullptr, 0, &bytes);
  std::string out(static_cast<const char*>(packed), bytes);
  VSIFree(packed);
  return out;
}

std::string jpegOf(bool progressive) {
  writeGood("/vsimem/j.jpg", {progressive ? "PROGRESSIVE=YES" : "PROGRESSIVE=NO"});
  vsi_l_offset size = 0;
  GByte* bytes = VSIGetMemFileBuffer("/vsimem/j.jpg", &size, TRUE);
  std::string out(reinterpret_cast<const char*>(bytes), size);
  VSIFree(bytes);
  return out;
}

size_t marker(const std::string& jpeg, char kind, size_t from = 2) {
  return jpeg.find(std::string("\xFF") + kind, from);
}

/// The stream with another size in its header.
std::string resized(std::string jpeg, uint16_t width, uint16_t height) {
  size_t at = marker(jpeg, '\xC0');
  if (at == std::string::npos) at = marker(jpeg, '\xC2');
  const char size[] = {char(height >> 8), char(height), char(width >> 8), char(width)};
  return jpeg.replace(at + 5, 4, size, 4);
}

/// A progressive stream whose second scan comes `count` times.
std::string manyScans(int count, uint16_t width, uint16_t height) {
  const std::string jpeg = resized(jpegOf(true), width, height);
  const size_t first = marker(jpeg, '\xDA');
  const size_t table = marker(jpeg, '\xC4', first);
  const size_t second = marker(jpeg, '\xDA', table);
  std::string out = jpeg.substr(0, second);
  for (int i = 0; i < count; ++i) out += jpeg.substr(second, 40);
  return out + "\xFF\xD9";
}

}  // namespace

std::vector<Case> hostileTiffs() {
  constexpr uint32_t kMost = 0xFFFFFFFF;
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN(), kInf = HUGE_VAL;
  const auto refused = Expect::kRefused, either = Expect::kEither, shown = Expect::kShown;
  std::string deep = "<GDALMetadata>", behind = tiffOf({});
  for (int i = 0; i < 500000; ++i) deep += "<a>";
  behind.replace(4, 4, littleEndian(0xFFFFFFF0, 4));
  std::vector<Case> cases = {
      tiff(shown, {}),
      tiff(shown, {}, kOwnPlace),
      tiff(shown, {}, kMost),
      {"behind.tif", refused, [=](const std::string& path) { writeBytes(path, behind); }},
      {"chain.tif", shown,
       [](const std::string& path) { writeBytes(path, manyDirectories(1000)); }},
      {"chain.tif", refused,
       [](const std::string& path) { writeBytes(path, manyDirectories(65535)); }},
      tiff(refused, {longField(256, kMost)}),
      tiff(refused, {longField(256, 0)}),
      tiff(either, {longField(257, kMost), longField(278, kMost)}),
      tiff(either, {longField(257, 0x7FFFFFFF), longField(278, 0x7FFFFFFF)}),
      tiff(either, {longField(256, 0x7FFFFFFF), longField(257, 1)}),
      {"wide.tif", either,
       [=](const std::string& path) {
         writeBytes(path, tiffOf({longField(256, 0x3FFFFFF0), longField(257, 1), longField(278, 1),
                                  longField(279, 0x3FFFFFF0)}));
         EXPECT_EQ(truncate(path.c_str(), 0x40000000), 0);
       },
       true},
      tiff(either, {longField(256, 0x7FFFFFFF), longField(257, 0x7FFFFFFF)}),
      tiff(either, {longField(256, 65536), longField(257, 65536), longField(278, 65536)}),
      tiff(either, {longField(278, 0)}),
      tiff(either, {longField(278, 1)}),
      tiff(either, {longField(279, kMost)}),
      tiff(either, {longField(279, 0)}),
      tiff(refused, {longField(273, kMost)}),
      tiff(either, {shortField(258, 64)}),
      tiff(either, {shortField(258, 0)}),
      tiff(either, {shortField(277, 65535)}),
      tiff(either, {shortField(277, 65535), shortField(284, 2)}),
      tiff(either, {shortField(277, 0)}),
      tiff(either, {shortField(339, 6)}),
      tiff(either, {shortField(262, 3), {320, kShort, 3, 0, "\1\2\3\4\5\6"}}),
      tiff(either, {shortField(262, 3), {320, kShort, 768, 0, std::string(1536, '\x77')}}),
      tiff(either, {shortField(262, 6), {530, kShort, 2, 0, ""}}),
      tiff(either, {{330, kLong, 1, 8 + 4096, ""}}),
      tiff(either, {{330, kLong, 1, kMost, ""}}),
      tiff(either, {{330, kLong, kMost, 8, ""}}),
      tiff(either, {{34735, kShort, 7, 0, std::string(14, '\xFF')}}),
      tiff(either, {{34735, kShort, 8, 0,
                     std::string("\1\0\1\0\0\0\xFF\xFF\0\x04\xB1\x87\xFF\xFF\xFF\xFF", 16)}}),
      tiff(either,
           {doubleField(33550, {kNan, kNan, 0}), doubleField(33922, {0, 0, 0, kInf, kNan, 0})}),
      tiff(either,
           {doubleField(33550, {1e-300, 1e300, 0}), doubleField(33922, {0, 0, 0, 1e300, 1, 0})}),
      tiff(either, {doubleField(34264, std::vector<double>(16, kInf))}),
      tiff(either, {doubleField(33922, std::vector<double>(60000, 3.5))}),
      tiff(either, {textField(42113, "1e999999")}),
      tiff(either, {textField(42113, std::string(100000, '9'))}),
      tiff(shown, {textField(42112, deep)}),
      tiff(shown, {textField(42112, "<GDALMetadata><Item name=\"TARN_STAMP\">1 x</Item>")}),
      tiff(refused, tilesOf(0x7FFFFFF0, 0x7FFFFFF0, 4096)),
      tiff(refused, tilesOf(64, 0x7FFFFFF0, 4096)),
      tiff(refused, tilesOf(40000, 32768, 4096)),
      tiff(either, tilesOf(64, 1, 4096)),
      tiff(either, tilesOf(20000, 8192, 4096)),
      tiff(either, tilesOf(64, 0, 4096)),
      tiff(either, tilesOf(64, 17, 4096)),
  };
  for (const uint16_t tag : {256,   258,   273,   279,   320,   322,   324,   325, 339, 347, 33550,
                             33922, 34264, 34735, 34736, 34737, 42112, 42113, 532, 530, 338})
    cases.push_back(tiff(either, {{tag, kLong, kMost, 8, ""}}));
  for (const uint16_t tag : {273, 279, 258, 339, 347, 42112})
    cases.push_back({"repeated.tif", either,
                     [tag](const std::string& path) { writeBytes(path, repeatedLists(tag)); }});
  return cases;
}

std::vector<Case> hostileCompressions() {
  const auto refused = Expect::kRefused, either = Expect::kEither;
  std::vector<Case> cases;
  const std::string noise = [] {
    std::string bytes;
    for (uint32_t i = 0, seed = 1; i < 5000; ++i) {
      seed = seed * 1664525 + 1013904223;
      bytes += static_cast<char>(seed >> 24);
    }
    return bytes;
  }();
  for (const uint32_t kind :
       {2,     3,     4,     5,     6,     7,     8,     32773, 32809, 32946,
        33003, 34676, 34677, 34712, 34887, 34925, 50000, 50001, 50002, 60000}) {
    cases.push_back(block(either, {shortField(259, kind)}, noise));
    cases.push_back(
        block(either, {shortField(259, kind), shortField(258, 16)}, std::string(9, '\0')));
  }
  const std::string zeros = deflated(size_t{300} << 20);
  const auto deflate = [&](uint32_t tile) {
    return tilesOf(tile, tile, static_cast<uint32_t>(zeros.size())) +
           std::vector<Field>{shortField(259, 8)};
  };
  cases.push_back(block(either, deflate(256), zeros));
  cases.push_back(block(either, deflate(8192), zeros));
  cases.push_back(block(refused, deflate(20000), zeros));
  const std::string plain = jpegOf(false), progressive = jpegOf(true);
  const auto jpegTile = [&](const std::string& stream) {
    return block(either,
                 tilesOf(256, 256, static_cast<uint32_t>(stream.size())) +
                     std::vector<Field>{{258, kShort, 3, 0, std::string("\x8\0\x8\0\x8\0", 6)},
                                        shortField(277, 3),
                                        shortField(262, 6),
                                        shortField(259, 7)},
                 stream);
  };
  const auto jpeg = [&](const std::string& stream) {
    return Case{"j.jpg", either, [=](const std::string& path) { writeBytes(path, stream); }};
  };
  for (const std::string& stream :
       {plain, progressive, resized(plain, 65500, 65500), resized(progressive, 65500, 65500),
        resized(progressive, 16000, 16000), resized(plain, 0, 0), resized(plain, 1, 65500),
        manyScans(20000, 600, 500), manyScans(60000, 4000, 4000), plain.substr(0, 700), noise}) {
    cases.push_back(jpegTile(stream));
    cases.push_back(jpeg(stream));
  }
  for (const std::string& tables : {noise, plain, std::string("\xFF\xD8\xFF\xD9", 4)})
    cases.push_back(block(
        either, {shortField(259, 7), {347, 7, static_cast<uint32_t>(tables.size()), 0, tables}},
        plain));
  return cases;
}

}  // namespace tarn::hostile
