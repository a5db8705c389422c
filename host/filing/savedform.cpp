#include "host/filing/savedform.h"

namespace tarn::host {

namespace {

struct VersionName {
  const char* code;
  const char* name;
};
constexpr VersionName kNames[] = {{"AC1009", "R12"},   {"AC1012", "R13"},   {"AC1014", "R14"},
                                  {"AC1015", "R2000"}, {"AC1018", "R2004"}, {"AC1021", "R2007"},
                                  {"AC1024", "R2010"}, {"AC1027", "R2013"}, {"AC1032", "R2018"}};

}  // namespace

const std::vector<std::string>& savedVersions() {
  static const std::vector<std::string> all = {"AC1015", "AC1018", "AC1021",
                                               "AC1024", "AC1027", "AC1032"};
  return all;
}

std::string nameOfVersion(std::string_view code) {
  for (const VersionName& one : kNames) {
    if (code == one.code) return one.name;
  }
  return code < "AC1012" ? "R12" : std::string(code);
}

}  // namespace tarn::host
