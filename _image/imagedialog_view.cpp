// What the panel does to the way images are seen.
#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imageadding.h"
#include "_image/imagedialog.h"
#include "_image/imagezoom.h"
#include "_image/moduleglobals.h"
#include "_image/rectify/rectifyopening.h"
#include "commoncode/cadutil/message.h"
#include "imageclient/tarnclientmanager.h"

using namespace tarn::image;
using tarn::cad::printMessage;

void ImageDialog::OnTreeDoubleClick(NMHDR*, LRESULT* result) {
  *result = 0;
  const std::wstring path = SelectedImage();
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  if (path.empty() || !record) return;
  if (zoomToImage(*record, path)) sendCommandToHost(L"regen");
}

void ImageDialog::OnRectifyImage() {
  const std::wstring path = SelectedImage();
  if (path.empty()) return;
  CDocData* record = currentRecordOrReport();
  if (!record) return;
  if (!openRectification(*record, path)) printMessage(L"\n打开影像出错");
}

void ImageDialog::ApplyAntiAliasing(CDocData& record, bool on) {
  const OpenedImage image(record, AcDb::kForRead);
  if (!image) return;
  for (const auto& [path, source] : image->localSources()) source->setAntiAliasing(on);
  for (const auto& [path, client] : image->serverSources()) client->setAntiAliasing(on);
}

void ImageDialog::OnAntiAliasing() {
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  if (!record || !record->hasImage()) return;
  ApplyAntiAliasing(*record, !m_antiAliasing);
  m_antiAliasing = !m_antiAliasing;
  sendCommandToHost(L"regen");
}

void ImageDialog::Stretch(int mode) {
  const std::wstring path = SelectedImage();
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  if (path.empty() || !record) return;
  {
    const OpenedImage image(*record, AcDb::kForRead);
    if (!image) return;
    IImageDivision* source = image->sourceOf(path);
    TarnClientManager* client = image->clientOf(path);
    if (source) source->setStretchMode(mode);
    if (client) client->setStretchMode(mode);
    if (!source && !client) return;
  }
  m_stretchMode = mode;
  sendCommandToHost(L"regen");
}

void ImageDialog::OnStretchEqualise() {
  Stretch(1);
}

void ImageDialog::OnStretchDeviation() {
  Stretch(2);
}

void ImageDialog::OnStretchNone() {
  Stretch(-1);
}
