// What stands behind each group code in binary drawings.
#pragma once

#include <optional>
#include <string_view>

namespace tarn::host {

inline constexpr std::string_view kBinaryMark("AutoCAD Binary DXF\r\n\x1a\0", 22);

enum class BinaryValue { kText, kReal, kInt16, kInt32, kInt64, kBool, kChunk };

/// Nothing for a number that is no group code.
std::optional<BinaryValue> binaryValueOf(int code);

}  // namespace tarn::host
