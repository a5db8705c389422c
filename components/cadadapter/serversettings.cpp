#include "components/cadadapter/serversettings.h"

#include <set>
#include <string>

#include "accmd.h"
#include "base/file.h"
#include "inc/iconfigmanager.h"
#include "inc/iuserinterface.h"
#include "inc/kimageservers.h"

namespace kel {
namespace {

constexpr const char* kSource = "components/cadadapter";
constexpr const ACHAR* kGroup = L"TARNADAPTER";
constexpr const ACHAR* kCommand = L"IMAGESERVER";
constexpr int kServerWay = 1;
constexpr int kLocalWay = 2;
/// The fields of the form.
enum Field { kWay, kServers, kFieldCount };
/// The columns of the servers.
enum Column { kName, kAddress, kCaFile, kColumnCount };

bool isServerWay(const List<FormField>& fields) {
  return fields[kWay].value == "0";
}

/// The servers of the form's table, or the reason why one of them does not do.
DString readServers(const List<FormField>& fields, List<ImageServer>& servers) {
  const StringList& cells = fields[kServers].values;
  std::set<std::string> names;
  for (size_t row = 0; row + kColumnCount <= cells.size(); row += kColumnCount) {
    ImageServer server;
    DString reason =
        parseImageServer(cells[row + kName], cells[row + kAddress], cells[row + kCaFile], server);
    if (!reason.isEmpty()) return reason;
    if (!names.insert(server.name.str()).second) {
      return "\"" + server.name.str() + "\": two servers have this name.";
    }
    const std::string& file = server.caFile.str();
    if (!file.empty() && tarn::fileKind(file) != tarn::FileKind::kRegular) {
      return file + ": there is no such file of certificates.";
    }
    servers.push_back(server);
  }
  if (servers.empty() && isServerWay(fields)) {
    return "To load images from a server, add one to the list.";
  }
  return {};
}

Form makeForm(IConfigManager& config) {
  Form form;
  form.title = "Image servers";
  form.accept = "Save";
  form.fields.resize(kFieldCount);
  FormField& way = form.fields[kWay];
  way.kind = FormField::Kind::kChoice;
  way.label = "Images are loaded from";
  way.choices = {"Image server", "Local files"};
  way.value = config.getValue(kLoadWayKey).toInt() == kServerWay ? "0" : "1";
  FormField& table = form.fields[kServers];
  table.kind = FormField::Kind::kTable;
  table.label = "Servers (a name and password are taken from the environment or a netrc file)";
  table.choices = {"Name", "Address", "File of certificates"};
  for (const ImageServer& server : imageServersOf(config.getValue(kImageServersKey).toString())) {
    for (const DString& cell : {server.name, addressOf(server), server.caFile}) {
      table.values.push_back(cell);
    }
  }
  form.check = [](const List<FormField>& fields) {
    List<ImageServer> servers;
    return readServers(fields, servers);
  };
  return form;
}

void editServers() {
  const Object<IConfigManager> config("N", kSource, __LINE__);
  const Object<IUserInterface> user("N", kSource, __LINE__);
  if (config.isNull() || user.isNull()) return;
  Form form = makeForm(*config.get());
  if (!user->askForm(form)) return;
  List<ImageServer> servers;
  readServers(form.fields, servers);
  const int way = isServerWay(form.fields) ? kServerWay : kLocalWay;
  if (config->setValue(kImageServersKey, textOf(servers)) && config->setValue(kLoadWayKey, way)) {
    user->message("Image servers: saved.");
  }
}

}  // namespace

void registerServerCommand() {
  acedRegCmds->addCommand(kGroup, kCommand, kCommand, ACRX_CMD_MODAL, &editServers);
}

void removeServerCommand() {
  acedRegCmds->removeGroup(kGroup);
}

}  // namespace kel
