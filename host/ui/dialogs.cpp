#include <string>
#include <vector>

#include "afxwin.h"
#include "base/text.h"
#include "host/ui/uibackend.h"
#include "host/ui/uiservices.h"

using tarn::host::uiServices;

namespace tarn::host {

int refusingButton(unsigned type) {
  switch (type & 0xf) {
    case MB_YESNO:
      return IDNO;
    case MB_OKCANCEL:
    case MB_YESNOCANCEL:
      return IDCANCEL;
    default:
      return IDOK;
  }
}

}  // namespace tarn::host

int AfxMessageBox(const ACHAR* text, UINT type, UINT) {
  if (uiServices().backend == nullptr) return tarn::host::refusingButton(type);
  return uiServices().backend->messageBox(tarn::toUtf8(text != nullptr ? text : L""), "", type);
}

struct CFileDialog::Parts {
  tarn::host::FileRequest request;
  std::vector<CString> chosen;
};

namespace {

std::string utf8OrEmpty(const ACHAR* text) {
  return text != nullptr ? tarn::toUtf8(text) : "";
}

}  // namespace

CFileDialog::CFileDialog(BOOL openFileDialog, const ACHAR* defaultExtension, const ACHAR* fileName,
                         DWORD flags, const ACHAR* filter, CWnd*)
    : parts_(std::make_unique<Parts>()) {
  m_ofn.Flags = flags;
  parts_->request.open = openFileDialog != FALSE;
  parts_->request.defaultExtension = utf8OrEmpty(defaultExtension);
  parts_->request.initialName = utf8OrEmpty(fileName);
  parts_->request.filter = utf8OrEmpty(filter);
}

CFileDialog::~CFileDialog() = default;

CFolderPickerDialog::CFolderPickerDialog(const ACHAR* folder, DWORD flags, CWnd* parent)
    : CFileDialog(TRUE, nullptr, folder, flags, nullptr, parent) {
  parts_->request.folder = true;
}

INT_PTR CFileDialog::DoModal() {
  parts_->chosen.clear();
  if (uiServices().backend == nullptr) return IDCANCEL;
  tarn::host::FileRequest request = parts_->request;
  request.several = request.open && (m_ofn.Flags & OFN_ALLOWMULTISELECT) != 0;
  request.mustExist = request.open;
  request.overwritePrompt = !request.open && (m_ofn.Flags & OFN_OVERWRITEPROMPT) != 0;
  request.title = utf8OrEmpty(m_ofn.lpstrTitle);
  const auto names = uiServices().backend->fileNames(request);
  if (!names || names->empty()) return IDCANCEL;
  for (const std::string& name : *names) parts_->chosen.emplace_back(tarn::toWide(name).c_str());
  return IDOK;
}

CString CFileDialog::GetPathName() const {
  return parts_->chosen.empty() ? CString() : parts_->chosen.front();
}

POSITION CFileDialog::GetStartPosition() const {
  return parts_->chosen.empty() ? nullptr : parts_->chosen.data();
}

CString CFileDialog::GetNextPathName(POSITION& position) const {
  if (position == nullptr) return {};
  const auto* current = static_cast<const CString*>(position);
  const auto* next = current + 1;
  position = next == parts_->chosen.data() + parts_->chosen.size() ? nullptr : next;
  return *current;
}
