#include "host/editor/aliases.h"

#include "base/text.h"

namespace tarn::host {

const std::vector<Alias>& aliases() {
  static const std::vector<Alias> all = {
      {"AP", "APPLOAD"}, {"C", "CIRCLE"},  {"CO", "COPY"},    {"CP", "COPY"},    {"DI", "DIST"},
      {"DV", "DVIEW"},   {"E", "ERASE"},   {"EXIT", "QUIT"},  {"L", "LINE"},     {"LA", "LAYER"},
      {"LI", "LIST"},    {"LO", "LAYOUT"}, {"LS", "LIST"},    {"M", "MOVE"},     {"MS", "MSPACE"},
      {"MV", "MVIEW"},   {"P", "PAN"},     {"PL", "PLINE"},   {"PS", "PSPACE"},  {"RE", "REGEN"},
      {"RO", "ROTATE"},  {"SC", "SCALE"},  {"SCR", "SCRIPT"}, {"SET", "SETVAR"}, {"V", "VIEW"},
      {"Z", "ZOOM"}};
  return all;
}

std::string commandOfAlias(const std::string& alias) {
  for (const Alias& one : aliases()) {
    if (equalsIgnoreCase(std::string_view(one.alias), alias)) return one.command;
  }
  return {};
}

}  // namespace tarn::host
