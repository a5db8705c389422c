#include "components/raster/sampleconvert.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "components/raster/tile.h"

namespace tarn::raster {
namespace {

// Pixels that are converted together: their marks stay in the nearest cache.
constexpr size_t kRun = 2048;
constexpr double kLargest = 1e37;

/// The conversions of one sample type; T is its number type.
template <typename T>
class Converter {
 public:
  Converter(const Presentation& presentation, const SampleView& view)
      : p_(presentation), view_(view) {}

  void run(uint8_t* out) {
    for (size_t from = 0; from < view_.pixels; from += kRun) {
      const size_t count = std::min(kRun, view_.pixels - from);
      uint8_t* target = out + from * p_.channels;
      convert(from, count, target);
      if (p_.conversion != Conversion::kPalette && p_.conversion != Conversion::kScaled)
        keepContent(target, count);
      markContent(from, count);
      paintUnmarked(target, count, 0);
    }
  }

  void collect(size_t step, std::vector<double>& out) {
    for (size_t from = 0; from < view_.pixels; from += kRun) {
      const size_t count = std::min(kRun, view_.pixels - from);
      markContent(from, count);
      if (bordersAreNothing()) {
        uint8_t other[kRun];
        std::memcpy(other, marks_, count);
        markNotAll(from, count, T(0));
        combine(other, count);
        std::memcpy(other, marks_, count);
        markNotAll(from, count, static_cast<T>(p_.top));
        combine(other, count);
      }
      const size_t first = (step - from % step) % step;
      for (size_t i = first; i < count; i += step) {
        if (marks_[i] == 0) continue;
        for (size_t b = 0; b < p_.bands.size(); ++b)
          out.push_back(static_cast<double>(band(b)[from + i]));
      }
    }
  }

 private:
  using Number = std::conditional_t<std::is_same_v<T, double>, double, float>;

  const T* band(size_t i) const { return static_cast<const T*>(view_.bands[i]); }

  /// Scaled unsigned samples that are 0, or the largest, in all bands are rims.
  bool bordersAreNothing() const {
    return p_.conversion == Conversion::kScaled && p_.top > 0 && !p_.keepsBlack;
  }

  void combine(const uint8_t* other, size_t count) {
    for (size_t i = 0; i < count; ++i) marks_[i] = static_cast<uint8_t>(marks_[i] & other[i]);
  }

  /// Marks (255) the pixels that are there.
  void markContent(size_t from, size_t count) {
    std::memset(marks_, 255, count);
    if (!p_.nodata.empty()) {
      std::memset(marks_, 0, count);
      for (size_t b = 0; b < p_.bands.size(); ++b) {
        const T* samples = band(b) + from;
        const T nodata = static_cast<T>(p_.nodata[b]);
        for (size_t i = 0; i < count; ++i)
          marks_[i] = static_cast<uint8_t>(marks_[i] | (samples[i] != nodata ? 255 : 0));
      }
    }
    if (view_.mask) {
      const uint8_t* mask = view_.mask + from;
      for (size_t i = 0; i < count; ++i)
        marks_[i] = static_cast<uint8_t>(mask[i] != 0 ? marks_[i] : 0);
    }
    if (view_.alpha) {
      const T* alpha = static_cast<const T*>(view_.alpha) + from;
      for (size_t i = 0; i < count; ++i)
        marks_[i] = static_cast<uint8_t>(alpha[i] != 0 ? marks_[i] : 0);
    }
    if constexpr (std::is_floating_point_v<T>) {
      for (size_t b = 0; b < p_.bands.size(); ++b) {
        const T* samples = band(b) + from;
        for (size_t i = 0; i < count; ++i) {
          const bool number =
              samples[i] > static_cast<T>(-kLargest) && samples[i] < static_cast<T>(kLargest);
          marks_[i] = static_cast<uint8_t>(number ? marks_[i] : 0);
        }
      }
    }
  }

  /// Marks the pixels that are not `value` in all bands.
  void markNotAll(size_t from, size_t count, T value) {
    std::memset(marks_, 0, count);
    for (size_t b = 0; b < p_.bands.size(); ++b) {
      const T* samples = band(b) + from;
      for (size_t i = 0; i < count; ++i)
        marks_[i] = static_cast<uint8_t>(marks_[i] | (samples[i] != value ? 255 : 0));
    }
  }

  void paintUnmarked(uint8_t* out, size_t count, uint8_t value) const {
    if (!std::memchr(marks_, 0, count)) return;
    for (size_t i = 0; i < count; ++i) {
      if (marks_[i] == 0) std::memset(out + i * p_.channels, value, p_.channels);
    }
  }

  /// Black and white content is made nearly so.
  void keepContent(uint8_t* out, size_t count) const {
    if (!(p_.keepsBlack || p_.keepsWhite) || !findKeys(out, count, p_.channels)) return;
    const bool gray = p_.channels == 1;
    for (size_t i = 0; i < count; ++i) {
      uint8_t* pixel = out + i * p_.channels;
      const int high = gray ? pixel[0] : pixel[0] | pixel[1] | pixel[2];
      const int low = gray ? pixel[0] : pixel[0] & pixel[1] & pixel[2];
      if (high == 0 && p_.keepsBlack) std::memset(pixel, 1, p_.channels);
      if (low == 255 && p_.keepsWhite) std::memset(pixel, 254, p_.channels);
    }
  }

  void convert(size_t from, size_t count, uint8_t* out) {
    switch (p_.conversion) {
      case Conversion::kBytes:
        for (int c = 0; c < p_.channels; ++c) {
          const T* samples = band(c) + from;
          for (size_t i = 0; i < count; ++i)
            out[i * p_.channels + c] = static_cast<uint8_t>(samples[i]);
        }
        return;
      case Conversion::kSpread:
        for (int c = 0; c < p_.channels; ++c) {
          const T* samples = band(c) + from;
          for (size_t i = 0; i < count; ++i)
            out[i * p_.channels + c] = (*p_.table)[static_cast<uint8_t>(samples[i])];
        }
        return;
      case Conversion::kPalette:
        return convertPalette(from, count, out);
      case Conversion::kCmyk:
        return convertCmyk(from, count, out);
      case Conversion::kScaled:
        break;
    }
    for (int c = 0; c < p_.channels; ++c) scaleBand(band(c) + from, count, out + c);
    if (!bordersAreNothing()) return;
    markNotAll(from, count, T(0));
    paintUnmarked(out, count, p_.minIsWhite ? 255 : 0);
    markNotAll(from, count, static_cast<T>(p_.top));
    paintUnmarked(out, count, p_.minIsWhite ? 0 : 255);
  }

  void scaleBand(const T* samples, size_t count, uint8_t* out) const {
    const double range = p_.scale.high - p_.scale.low;
    const double sign = p_.minIsWhite ? -1 : 1;
    const auto low = static_cast<Number>(p_.scale.low);
    const auto factor = static_cast<Number>(range > 0 ? sign * 253 / range : 0);
    const auto base = static_cast<Number>(range > 0 ? (p_.minIsWhite ? 254.5 : 1.5) : 128.5);
    const size_t channels = p_.channels;
    for (size_t i = 0; i < count; ++i) {
      Number value = (static_cast<Number>(samples[i]) - low) * factor + base;
      // In this form a number that is none becomes 1, too.
      value = value > 1 ? value : 1;
      value = value < 254 ? value : 254;
      out[i * channels] = static_cast<uint8_t>(value);
    }
  }

  void convertPalette(size_t from, size_t count, uint8_t* out) const {
    const T* samples = band(0) + from;
    const std::vector<uint8_t>& table = *p_.table;
    const size_t entries = table.size() / p_.channels;
    for (size_t i = 0; i < count; ++i) {
      // NOLINTNEXTLINE(bugprone-signed-char-misuse): what is negative lies beyond the table
      const auto index = static_cast<size_t>(samples[i]);
      uint8_t* pixel = out + i * p_.channels;
      for (int c = 0; c < p_.channels; ++c)
        pixel[c] = index < entries ? table[index * p_.channels + c] : 0;
    }
  }

  /// Red is what cyan and black leave of white, and so on.
  void convertCmyk(size_t from, size_t count, uint8_t* out) const {
    const auto top = static_cast<float>(p_.top);
    const T* black = band(3) + from;
    for (int c = 0; c < 3; ++c) {
      const T* ink = band(c) + from;
      for (size_t i = 0; i < count; ++i) {
        const float left =
            (top - static_cast<float>(ink[i])) * (top - static_cast<float>(black[i]));
        out[3 * i + c] = static_cast<uint8_t>(left * (255 / (top * top)) + 0.5F);
      }
    }
  }

  const Presentation& p_;
  const SampleView& view_;
  uint8_t marks_[kRun];
};

template <typename Work>
void withType(SampleType type, const Work& work) {
  switch (type) {
    case SampleType::kByte:
      return work(uint8_t{});
    case SampleType::kSignedByte:
      return work(int8_t{});
    case SampleType::kUInt16:
      return work(uint16_t{});
    case SampleType::kInt16:
      return work(int16_t{});
    case SampleType::kFloat:
      return work(float{});
    case SampleType::kDouble:
      return work(double{});
  }
}

}  // namespace

void convertSamples(const Presentation& presentation, const SampleView& view, uint8_t* out) {
  withType(presentation.type,
           [&](auto sample) { Converter<decltype(sample)>(presentation, view).run(out); });
}

void divideByAlpha(const Presentation& presentation, const void* alpha, size_t pixels, void* band) {
  withType(presentation.type, [&](auto sample) {
    using T = decltype(sample);
    const T* opacity = static_cast<const T*>(alpha);
    T* samples = static_cast<T*>(band);
    const double top = presentation.top;
    for (size_t i = 0; i < pixels; ++i) {
      const auto a = static_cast<double>(opacity[i]);
      if (a <= 0 || a >= top) continue;
      samples[i] = static_cast<T>(std::min(top, std::floor(samples[i] * top / a + 0.5)));
    }
  });
}

void lookAtAlpha(const Presentation& presentation, const SampleView& view, AlphaSigns& signs) {
  withType(presentation.type, [&](auto sample) {
    using T = decltype(sample);
    const T* alpha = static_cast<const T*>(view.alpha);
    for (size_t b = 0; b < presentation.bands.size(); ++b) {
      const T* samples = static_cast<const T*>(view.bands[b]);
      for (size_t i = 0; i < view.pixels; ++i) {
        const bool partial = alpha[i] > 0 && static_cast<double>(alpha[i]) < presentation.top;
        signs.partial = signs.partial || partial;
        signs.exceeded = signs.exceeded || (partial && samples[i] > alpha[i]);
      }
    }
  });
}

void collectContent(const Presentation& presentation, const SampleView& view, size_t step,
                    std::vector<double>& out) {
  withType(presentation.type, [&](auto sample) {
    Converter<decltype(sample)>(presentation, view).collect(step, out);
  });
}

}  // namespace tarn::raster
