// Rates of the inner loops of components/raster, in bytes of source pixels a second.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "components/raster/halving.h"
#include "components/raster/jpegtile.h"
#include "components/raster/resample.h"
#include "components/raster/stretch.h"
#include "components/raster/tile.h"

namespace tarn::raster {
namespace {

std::vector<uint8_t> noise(size_t bytes) {
  std::vector<uint8_t> out(bytes);
  uint32_t seed = 7;
  for (uint8_t& value : out) {
    seed = seed * 1664525 + 1013904223;
    value = static_cast<uint8_t>(1 + (seed >> 16) % 254);
  }
  return out;
}

void findKeysRate(benchmark::State& state) {
  const auto pixels = noise(256 * 256 * 3);
  for (auto _ : state) benchmark::DoNotOptimize(findKeys(pixels.data(), pixels.size() / 3, 3));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(pixels.size()));
}
BENCHMARK(findKeysRate);

void halveRate(benchmark::State& state) {
  const auto pixels = noise(512 * 512 * 3);
  std::vector<uint8_t> out(256 * 256 * 3);
  for (auto _ : state) {
    halve({pixels.data(), 512, 512, 512 * 3, 3}, state.range(0) != 0, true, out.data(), 256 * 3);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(pixels.size()));
}
BENCHMARK(halveRate)->ArgName("keys")->Arg(0)->Arg(1);

/// One thread, cells of range(0) hundredths of a pixel, tiles without keys or with one in every
/// range(1) pixels.
void resampleRate(benchmark::State& state) {
  constexpr int kSide = 1024;
  TileBlock block;
  block.grid = {kSide, kSide, kSide, kSide, 3};
  block.columns = block.rows = 1;
  auto tile = std::make_shared<Tile>();
  tile->allocate(kSide, kSide, 3);
  const auto pixels = noise(tile->bytes());
  std::copy(pixels.begin(), pixels.end(), tile->pixels.get());
  tile->hasKeys = state.range(1) != 0;
  for (size_t i = 0; tile->hasKeys && i < pixels.size() / 3; i += state.range(1))
    std::fill_n(tile->pixels.get() + 3 * i, 3, uint8_t{0});
  block.tiles.push_back(tile);
  const double cell = static_cast<double>(state.range(0)) / 100;
  const int cells = static_cast<int>(kSide / cell);
  const AxisTaps taps =
      makeTaps({0.3, cell, cells, kSide, kSide}, cell > 1 ? Filter::kBox : Filter::kNearest);
  std::vector<uint8_t> out(static_cast<size_t>(cells) * cells * 3);
  for (auto _ : state) {
    resample(block, taps, taps, out.data(), static_cast<size_t>(cells) * 3);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(tile->bytes()));
}
BENCHMARK(resampleRate)
    ->ArgNames({"cell", "keys"})
    ->ArgsProduct({{100, 137, 185, 200, 800, 3700}, {0, 37, 9973}});

/// A view of 1920 x 1080 cells, content alone or with nothing in every chunk, on all processors.
void stretchRate(benchmark::State& state) {
  auto cells = noise(1920 * 1080 * 3);
  if (state.range(0) != 0) {
    for (size_t i = 0; i < cells.size(); i += 300) std::fill_n(&cells[i], 3, uint8_t{0});
  }
  Histogram histogram;
  histogram.add(cells.data(), cells.size() / 3, 3);
  const StretchTables tables = makeStretchTables(histogram, StretchMode::kEqualise);
  for (auto _ : state) {
    applyStretch(tables, cells.data(), cells.size() / 3);
    benchmark::DoNotOptimize(cells.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(cells.size()));
}
BENCHMARK(stretchRate)
    ->ArgName("keys")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void decodeJpegRate(benchmark::State& state) {
  std::vector<uint8_t> pixels(256 * 256 * 3), stream, out(pixels.size());
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i / 768 + i % 97);
  encodeJpegTile(pixels.data(), 256, 256, 3, 90, stream);
  for (auto _ : state) decodeJpegTile(stream, {}, JpegColours::kYCbCr, 256, 256, out.data());
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(pixels.size()));
}
BENCHMARK(decodeJpegRate);

}  // namespace
}  // namespace tarn::raster

BENCHMARK_MAIN();
