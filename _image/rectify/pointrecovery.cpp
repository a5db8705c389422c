#include "_image/rectify/pointrecovery.h"

#include <QStringList>

#include <functional>

#include "_image/binding/usesite.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "inc/iuserinterface.h"

namespace tarn::image {
namespace {

constexpr uint64_t kLargestFile = 1 << 24;
constexpr const char* kFolder = "rectify_points";

/// Path of the image's file in the profile; empty when there is no profile. Two images whose hashes
/// are the same are told apart by the first line.
std::string fileOf(const std::wstring& imagePath) {
  const auto services = makeObject<IUserInterface>(kRectifySite);
  if (services.isNull()) return {};
  const std::string profile = services->folder(IUserInterface::Folder::kProfile).str();
  if (profile.empty()) return {};
  const size_t hash = std::hash<std::string>()(toUtf8(imagePath));
  return joinPath(joinPath(profile, kFolder), std::to_string(hash) + ".txt");
}

std::string lineOf(const TableRow& row) {
  const ControlPoint& p = row.point;
  std::string line = row.isCheck ? "check" : "fit";
  for (const double value : {p.sourceEast, p.sourceNorth, p.targetEast, p.targetNorth}) {
    line += " " + formatDouble(value);
  }
  return line + "\n";
}

}  // namespace

void keepForRecovery(const std::wstring& imagePath, const TableRows& rows) {
  const std::string file = fileOf(imagePath);
  if (file.empty()) return;
  if (rows.empty()) {
    static_cast<void>(removeAll(file));
    return;
  }
  std::string text = toUtf8(imagePath) + "\n";
  for (const TableRow& row : rows) text += lineOf(row);
  if (makeFolders(folderOf(file))) static_cast<void>(writeFileAtomically(file, text));
}

TableRows recoverableRows(const std::wstring& imagePath) {
  const std::string file = fileOf(imagePath);
  if (file.empty() || fileKind(file) != FileKind::kRegular) return {};
  const auto text = readFile(file, kLargestFile);
  if (!text) return {};
  const std::vector<std::string> lines = split(text.value(), '\n');
  TableRows rows;
  if (lines.front() != toUtf8(imagePath)) return rows;
  for (size_t i = 1; i < lines.size(); ++i) {
    QStringList fields = QString::fromStdString(lines[i]).split(' ');
    const QString kind = fields.takeFirst();
    if (const auto point = pointOf(fields)) rows.push_back({*point, kind == "check"});
  }
  return rows;
}

}  // namespace tarn::image
