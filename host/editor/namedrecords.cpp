#include "host/editor/namedrecords.h"

#include "acutmem.h"
#include "base/text.h"
#include "dbdict.h"
#include "dbxrecrd.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"

namespace tarn::host {

namespace {

/// Group codes 1 to 9 and 300 to 309 hold texts.
bool isText(short code) {
  return (code >= 1 && code <= 9) || (code >= 300 && code <= 309);
}

std::vector<std::string> textsOf(const AcDbXrecord& record) {
  std::vector<std::string> texts;
  resbuf* chain = nullptr;
  if (record.rbChain(&chain) != Acad::eOk) return texts;
  for (const resbuf* item = chain; item != nullptr; item = item->rbnext) {
    const bool held = isText(item->restype) && item->resval.rstring != nullptr;
    if (held) texts.push_back(toUtf8(item->resval.rstring));
  }
  acutRelRb(chain);
  return texts;
}

}  // namespace

std::vector<std::string> namedStrings(HostApp& app, const std::string& dictionary,
                                      const std::string& record) {
  std::vector<std::string> texts;
  AcDbDictionary* root = nullptr;
  AcDbDictionary* inner = nullptr;
  AcDbXrecord* found = nullptr;
  AcDbDatabase* database = app.documents().current().database();
  if (database->getNamedObjectsDictionary(root, AcDb::kForRead) != Acad::eOk) return texts;
  if (root->getAt(toWide(dictionary).c_str(), inner, AcDb::kForRead) == Acad::eOk) {
    if (inner->getAt(toWide(record).c_str(), found, AcDb::kForRead) == Acad::eOk) {
      texts = textsOf(*found);
      found->close();
    }
    inner->close();
  }
  root->close();
  return texts;
}

}  // namespace tarn::host
