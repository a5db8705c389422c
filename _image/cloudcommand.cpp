#include "_image/cloudcommand.h"

#include <charconv>

#include "_image/commands.h"
#include "_image/docdata.h"
#include "_image/imageadding.h"
#include "acedads.h"
#include "acutads.h"
#include "afxwin.h"
#include "base/text.h"

namespace tarn::image {
namespace {

constexpr size_t kVersionCharacters = 4;
constexpr int kFirstWithProjects = 200;  // ten times the version
constexpr CloudFiles kOlderFiles = {L".pcg", L"*.pcg", L".pcg (*.pcg)|*.pcg|All Files (*.*)|*.*||"};
constexpr CloudFiles kNewerFiles = {L".rcp", L"*.rcp",
                                    L".rcp (*.rcp)|*.rcp|.rcs (*.rcs)|*.rcs|All Files (*.*)|*.*||"};

std::wstring hostVersion() {
  resbuf version{};
  if (acedGetVar(L"acadver", &version) != RTNORM || version.restype != RTSTR) return {};
  std::wstring text = version.resval.rstring;
  acutDelString(version.resval.rstring);
  return text;
}

/// The entity that was added last; null when there is none.
AcDbObjectId lastEntity() {
  AcDbObjectId id;
  ads_name set{};
  if (acedSSGet(L"L", nullptr, nullptr, nullptr, set) != RTNORM) return id;
  ads_name name{};
  if (acedSSName(set, 0, name) == RTNORM) acdbGetObjectId(id, name);
  acedSSFree(set);
  return id;
}

bool attach(const std::wstring& path) {
  const ads_point origin = {0, 0, 0};
  return acedCommandS(RTSTR, L"-POINTCLOUDATTACH", RTSTR, path.c_str(), RT3DPOINT, origin, RTREAL,
                      1.0, RTREAL, 0.0, RTNONE) == RTNORM;
}

}  // namespace

const CloudFiles& cloudFilesOf(const std::wstring& hostVersion) {
  const std::string digits = toUtf8(hostVersion.substr(0, kVersionCharacters));
  double version = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), version);
  return static_cast<int>(version * 10) < kFirstWithProjects ? kOlderFiles : kNewerFiles;
}

void commandLoadCloud() {
  const CloudFiles& files = cloudFilesOf(hostVersion());
  CFileDialog dialog(TRUE, files.extension, files.name, OFN_FILEMUSTEXIST | OFN_HIDEREADONLY,
                     files.filter);
  if (dialog.DoModal() != IDOK) return;
  const std::wstring path = dialog.GetPathName().GetString();
  if (path.empty()) return;
  const bool isAttached = attach(path);
  CDocData* record = currentRecordOrReport();
  if (record && isAttached) record->addPointCloud(path, lastEntity());
}

}  // namespace tarn::image
