// The language of the texts that are our own, beside those that are the same everywhere.
#pragma once

namespace tarn::cad {

/// True for English: the host's system variable LOCALE is "ENU". Else, also without an answer,
/// Chinese.
bool isEnglish();

}  // namespace tarn::cad
