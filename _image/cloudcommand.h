// Which point-cloud files the host can attach.
#pragma once

#include <string>

namespace tarn::image {

/// What the file dialog of "loadCloud" is asked with.
struct CloudFiles {
  const wchar_t* extension;
  const wchar_t* name;
  const wchar_t* filter;
};

/// By the host's version as ACADVER has it ("23.1s (LMS Tech)"): hosts before 20.0 know another
/// format. A version that begins with no number counts as 0.
const CloudFiles& cloudFilesOf(const std::wstring& hostVersion);

}  // namespace tarn::image
