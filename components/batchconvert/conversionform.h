// The form of a conversion: its questions in the user's language, and its answers as options.
#pragma once

#include <string>
#include <vector>

#include "base/result.h"
#include "components/convert/options.h"
#include "inc/kform.h"

namespace tarn::batchconvert {

/// What the user has asked for.
struct Wish {
  convert::Options options;
  /// Files and folders.
  std::vector<std::string> names;
};

/// The form with the options that hold.
kel::Form makeForm(const convert::Options& options, bool isEnglish);

/// The answers; fails with a sentence for the user.
Result<Wish> readForm(const kel::List<kel::FormField>& fields, bool isEnglish);

/// Options as a text for the configuration ("format=cog;quality=85"), and back; what is not
/// understood is left out.
std::string storedText(const convert::Options& options);
convert::Options optionsOf(const std::string& text);

}  // namespace tarn::batchconvert
