#include "components/cadadapter/userinterface.h"

#include <string>
#include <vector>

#include "acedads.h"
#include "afxwin.h"
#include "base/text.h"
#include "tarnhost.h"

namespace kel {
namespace {

constexpr size_t kFileNameCharacters = 10000;

}  // namespace

void UserInterface::message(const DString& text) {
  acutPrintf(L"\n%ls", tarn::toWide(text.str()).c_str());
}

bool UserInterface::question(const DString& text) {
  return tarnHostQuestion(text.str());
}

StringList UserInterface::askFiles(const DString& title, const DString& filter,
                                   bool severalAllowed) {
  const std::wstring wideTitle = tarn::toWide(title.str());
  const std::wstring wideFilter = tarn::toWide(filter.str());
  DWORD flags = OFN_HIDEREADONLY | OFN_FILEMUSTEXIST;
  if (severalAllowed) flags |= OFN_ALLOWMULTISELECT;
  CFileDialog dialog(TRUE, nullptr, nullptr, flags, wideFilter.c_str());
  std::vector<ACHAR> buffer(kFileNameCharacters);
  dialog.m_ofn.lpstrFile = buffer.data();
  dialog.m_ofn.nMaxFile = static_cast<DWORD>(buffer.size());
  if (!title.isEmpty()) dialog.m_ofn.lpstrTitle = wideTitle.c_str();
  StringList files;
  if (dialog.DoModal() != IDOK) return files;
  for (POSITION position = dialog.GetStartPosition(); position;) {
    files.emplace_back(tarn::toUtf8(dialog.GetNextPathName(position).GetString()));
  }
  return files;
}

int UserInterface::choose(const DString& title, const StringList& choices) {
  std::string list = title.str();
  for (size_t i = 0; i < choices.size(); ++i) {
    list += "\n" + std::to_string(i + 1) + ": " + choices[i].str();
  }
  message(list);
  int number = 0;
  if (acedGetInt(L"\n> ", &number) != RTNORM) return -1;
  return number >= 1 && number <= static_cast<int>(choices.size()) ? number - 1 : -1;
}

void UserInterface::beginProgress(const DString& label, int minimum, int maximum) {
  acedSetStatusBarProgressMeter(tarn::toWide(label.str()).c_str(), minimum, maximum);
}

void UserInterface::moveProgress(int position) {
  acedSetStatusBarProgressMeterPos(position);
}

void UserInterface::endProgress() {
  acedRestoreStatusBar();
}

bool UserInterface::cancelWanted() {
  return tarnHostCancelWanted();
}

DString UserInterface::folder(Folder which) {
  switch (which) {
    case Folder::kProfile:
      return tarnHostFolder(TarnFolder::kProfile);
    case Folder::kConfiguration:
      return tarnHostFolder(TarnFolder::kConfiguration);
    case Folder::kCache:
      return tarnHostFolder(TarnFolder::kCache);
  }
  return {};
}

void UserInterface::count(const char* counter, long long amount) {
  tarnHostCount(counter, amount);
}

}  // namespace kel
