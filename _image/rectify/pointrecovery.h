// The table of an open dialog, kept in the profile so that a crash loses no points.
#pragma once

#include <string>

#include "_image/rectify/pointtable.h"

namespace tarn::image {

/// Writes the rows for the image; none takes the file away. A profile that cannot be written is
/// passed over: the dialog works all the same.
void keepForRecovery(const std::wstring& imagePath, const TableRows& rows);

/// What a dialog that did not end in order has left for the image; empty when nothing.
TableRows recoverableRows(const std::wstring& imagePath);

}  // namespace tarn::image
