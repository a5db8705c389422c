#include "components/raster/gdalaccess.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>
#include <cpl_vsi_virtual.h>
#include <gdal_frmts.h>
#include <gdal_priv.h>
#include <ogr_srs_api.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

#include "base/file.h"
#include "base/library.h"
#include "base/path.h"
#include "base/text.h"
#include "components/raster/guardedfiles.h"

namespace tarn::raster {
namespace {

void* refuseOpen(void*, const char*, const char*) {
  return nullptr;
}

int refuseStat(void*, const char*, VSIStatBufL*, int) {
  return -1;
}

// GDAL keeps the pointers, so the names must last as long as the process.
constexpr std::array kNetwork = {"/vsicurl/",
                                 "/vsicurl?",
                                 "/vsicurl_streaming/",
                                 "/vsis3/",
                                 "/vsis3_streaming/",
                                 "/vsigs/",
                                 "/vsigs_streaming/",
                                 "/vsiaz/",
                                 "/vsiaz_streaming/",
                                 "/vsiadls/",
                                 "/vsioss/",
                                 "/vsioss_streaming/",
                                 "/vsiswift/",
                                 "/vsiswift_streaming/",
                                 "/vsiwebhdfs/",
                                 "/vsihdfs/"};
// GDAL forgets the handlers that are replaced; somebody else may still be using one.
std::array<VSIFilesystemHandler*, kNetwork.size()> g_replaced;

void refuseNetwork() {
  VSIFilesystemPluginCallbacksStruct* callbacks = VSIAllocFilesystemPluginCallbacksStruct();
  callbacks->open = refuseOpen;
  callbacks->stat = refuseStat;
  for (size_t i = 0; i < kNetwork.size(); ++i) {
    g_replaced[i] = VSIFileManager::GetHandler(kNetwork[i]);
    VSIInstallPluginHandler(kNetwork[i], callbacks);
  }
  VSIFreeFilesystemPluginCallbacksStruct(callbacks);
}

void CPL_STDCALL collectError(CPLErr kind, CPLErrorNum, const char* text) {
  auto* errors = static_cast<GdalErrors*>(CPLGetErrorHandlerUserData());
  if (kind >= CE_Warning) errors->add(kind >= CE_Failure, text);
}

/// Where the tables of coordinate systems stand beside this library, they are used; elsewhere the
/// libraries find their own.
void useTablesBesideThis() {
  const std::string share =
      joinPath(folderOfCode(reinterpret_cast<const void*>(&prepareGdal)), "share");
  const std::string systems = joinPath(share, "proj"), data = joinPath(share, "gdal");
  if (fileKind(joinPath(systems, "proj.db")) == FileKind::kRegular) {
    const char* const places[] = {systems.c_str(), nullptr};
    OSRSetPROJSearchPaths(places);
  }
  if (fileKind(data) == FileKind::kFolder) CPLSetConfigOption("GDAL_DATA", data.c_str());
}

constexpr GIntBig kLeastCache = 32 << 20, kMostCache = 512 << 20;
std::mutex g_cacheMutex;

}  // namespace

void prepareGdal() {
  static std::once_flag once;
  std::call_once(once, [] {
    GDALRegister_GTiff();
    GDALRegister_HFA();
    GDALRegister_JPEG();
    GDALRegister_PNG();
    GDALRegister_BMP();
    GDALRegister_GIF();
    useTablesBesideThis();
    OSRSetPROJEnableNetwork(0);
    // Tiles are kept in the cache of this library; GDAL's is for what it is just decoding.
    GDALSetCacheMax64(kLeastCache);
    refuseNetwork();
    installGuardedFiles();
  });
}

void reserveGdalCache(uint64_t bytes) {
  const std::lock_guard<std::mutex> lock(g_cacheMutex);
  const GIntBig wanted = static_cast<GIntBig>(std::min<uint64_t>(bytes, kMostCache));
  if (wanted > GDALGetCacheMax64()) GDALSetCacheMax64(wanted);
}

GdalErrors::GdalErrors() {
  CPLPushErrorHandlerEx(collectError, this);
  CPLErrorReset();
}

GdalErrors::~GdalErrors() {
  CPLPopErrorHandler();
}

void GdalErrors::add(bool failure, const char* text) {
  if (failure) ++failures_;
  std::string& kept = failure ? failure_ : warning_;
  if (kept.empty()) kept = text;
}

void DatasetCloser::operator()(GDALDataset* dataset) const {
  const GdalErrors quiet;
  GDALClose(GDALDataset::ToHandle(dataset));
}

GuardedImage::GuardedImage(const std::string& path, bool alsoPictures)
    : path_(path), name_(nameOf(path)), alsoPictures_(alsoPictures) {
  prepareGdal();
  id_ = openGuardedFolder(path);
  prefix_ = guardedPrefix(id_);
}

GuardedImage::GuardedImage(std::shared_ptr<const RemoteBytes> bytes)
    : path_(bytes->name()), name_(kRemoteName), isRemote_(true) {
  prepareGdal();
  id_ = openGuardedBytes(std::move(bytes));
  prefix_ = guardedPrefix(id_);
}

GuardedImage::~GuardedImage() {
  closeGuardedFolder(id_);
}

std::string GuardedImage::cleaned(const std::string& gdalText) const {
  std::string text = replaceAll(gdalText, prefix_ + name_ + ": ", "");
  text = replaceAll(text, prefix_, "");
  // Damaged files put any bytes into GDAL's words.
  std::wstring shown = toWide(text);
  for (wchar_t& c : shown) {
    if (c < L' ' || c == 0x7F) c = L' ';
  }
  return toUtf8(shown);
}

Result<DatasetPtr> GuardedImage::open(const char* georeferencing) const {
  const GdalErrors errors;
  // Georeferencing beside the image is read by this library itself, so that one order of precedence
  // holds for every driver.
  const std::string source = std::string("GEOREF_SOURCES=") + georeferencing;
  const char* options[] = {source.c_str(), nullptr};
  std::vector<const char*> drivers = {"GTiff"};
  if (!isRemote_) drivers.insert(drivers.end(), {"HFA", "JPEG"});
  if (alsoPictures_) drivers.insert(drivers.end(), {"PNG", "BMP", "GIF"});
  drivers.push_back(nullptr);
  const std::string name = prefix_ + name_;
  DatasetPtr dataset(GDALDataset::Open(name.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY,
                                       drivers.data(), options, nullptr));
  if (dataset) return dataset;
  const std::string reason = cleaned(errors.text());
  if (errors.failures() == 0 || reason.find("not recognized") != std::string::npos)
    return Status::error(path_ + ": is no TIFF, IMG" +
                         (alsoPictures_ ? ", JPG, PNG, BMP or GIF image" : " or JPG image"));
  // Failed reads are reported with addresses and positions that say nothing to a user.
  if (reason.find("VSIF") != std::string::npos)
    return Status::error(path_ + ": is cut short or damaged");
  return Status::error(path_ + ": cannot be read: " + reason);
}

uint64_t guardedBytesRead() {
  return guardedBytesOfThread();
}

}  // namespace tarn::raster
