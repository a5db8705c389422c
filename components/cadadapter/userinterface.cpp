#include "components/cadadapter/userinterface.h"

#include <string>
#include <vector>

#include "acedads.h"
#include "afxwin.h"
#include "base/text.h"
#include "tarnform.h"
#include "tarnhost.h"
#include "tarnlisting.h"

namespace kel {
namespace {

constexpr size_t kFileNameCharacters = 10000;

std::vector<std::string> plain(const StringList& texts) {
  std::vector<std::string> out;
  for (const DString& text : texts) out.push_back(text.str());
  return out;
}

// The host's kinds and states stand in the same order as the framework's.
static_assert(static_cast<int>(FormField::Kind::kFolder) ==
              static_cast<int>(TarnFormField::Kind::kFolder));
static_assert(static_cast<int>(FormField::Kind::kTable) ==
              static_cast<int>(TarnFormField::Kind::kTable));
static_assert(static_cast<int>(TaskState::kFailed) == static_cast<int>(TarnTaskState::kFailed));

TarnFormField toHost(const FormField& field) {
  return {static_cast<TarnFormField::Kind>(field.kind),
          field.label.str(),
          plain(field.choices),
          field.value.str(),
          plain(field.values),
          field.filter.str(),
          field.least,
          field.most};
}

/// The fields with the values of the host's answers.
List<FormField> withAnswers(List<FormField> fields, const std::vector<TarnFormField>& answers) {
  for (size_t i = 0; i < fields.size() && i < answers.size(); ++i) {
    fields[i].value = answers[i].value;
    fields[i].values.assign(answers[i].values.begin(), answers[i].values.end());
  }
  return fields;
}

TarnListingEntry toHost(const ListingEntry& entry) {
  return {entry.key.str(),       entry.name.str(),   entry.isFolder,       entry.bytes,
          entry.time.str(),      entry.hasFootprint, entry.footprint.left, entry.footprint.bottom,
          entry.footprint.right, entry.footprint.top};
}

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
  tarnHostBeginProgress(label.str(), minimum, maximum);
}

void UserInterface::moveProgress(int position) {
  tarnHostMoveProgress(position);
}

void UserInterface::endProgress() {
  tarnHostEndProgress();
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

bool UserInterface::askForm(Form& form) {
  TarnForm hosts;
  hosts.title = form.title.str();
  hosts.accept = form.accept.str();
  for (const FormField& field : form.fields) hosts.fields.push_back(toHost(field));
  if (form.check) {
    hosts.check = [&form](const std::vector<TarnFormField>& answers) {
      return form.check(withAnswers(form.fields, answers)).str();
    };
  }
  if (!tarnHostAskForm(hosts)) return false;
  form.fields = withAnswers(form.fields, hosts.fields);
  return true;
}

void UserInterface::beginTasks(const DString& title, const StringList& tasks) {
  tarnHostBeginTasks(title.str(), plain(tasks));
}

void UserInterface::setTask(int task, TaskState state, const DString& text) {
  tarnHostSetTask(static_cast<size_t>(task), static_cast<TarnTaskState>(state), text.str());
}

void UserInterface::endTasks(const DString& report) {
  tarnHostEndTasks(report.str());
}

StringList UserInterface::chooseFromListing(const Listing& listing) {
  TarnListing hosts;
  hosts.title = listing.title.str();
  hosts.accept = listing.accept.str();
  hosts.severalAllowed = listing.severalAllowed;
  hosts.read = [&listing](const std::string& folder, std::vector<TarnListingEntry>& entries) {
    List<ListingEntry> read;
    const DString reason = listing.read(folder, read);
    for (const ListingEntry& entry : read) entries.push_back(toHost(entry));
    return reason.str();
  };
  if (listing.preview) {
    hosts.preview = [&listing](const std::string& image) { return listing.preview(image); };
  }
  StringList chosen;
  for (const std::string& key : tarnHostChooseFromListing(hosts)) chosen.emplace_back(key);
  return chosen;
}

bool UserInterface::filesGiven() {
  return tarnHostFilesGiven();
}

}  // namespace kel
