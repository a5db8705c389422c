// The panel's menus and tips.
#include <algorithm>

#include "_image/adskdmgr.h"
#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/imagedialog.h"
#include "_image/imagerelink.h"
#include "_image/imagetip.h"
#include "_image/moduleglobals.h"
#include "_image/paneltext.h"
#include "acdocman.h"
#include "inc/iconfigmanager.h"

using namespace tarn::image;

namespace {

constexpr const char* kPyramidSetting = "CreateImgx";
constexpr UINT kMenuFlags = TPM_LEFTALIGN | TPM_RIGHTBUTTON;

// Deliberate: compared exactly, though opening an image ignores case.
bool pyramidsWanted() {
  const auto config = makeObject<IConfigManager>(kPanelSettingSite);
  return config.isNull() || config->getValue(kPyramidSetting).toString().str() != "false";
}

size_t missingCount(const CDocData* record) {
  const AcApDocument* document = acDocManager ? acDocManager->curDocument() : nullptr;
  return record && document ? missingImagePaths(*record, *document).size() : 0;
}

std::wstring joined(const std::vector<std::wstring>& lines) {
  std::wstring text;
  for (const std::wstring& line : lines) text += (text.empty() ? L"" : L"\n") + line;
  return text;
}

/// How many images there are, shown and missing.
std::wstring listTip(const CDocData& record) {
  const std::vector<CDocData::Image>& images = record.images();
  const auto shown = std::count_if(images.begin(), images.end(),
                                   [](const CDocData::Image& image) { return image.isDisplayed; });
  std::vector<std::wstring> lines = {panelText(L"影像：", L"Images: ") +
                                     std::to_wstring(images.size()) +
                                     panelText(L"，显示：", L", shown: ") + std::to_wstring(shown)};
  if (const size_t missing = missingCount(&record)) {
    lines.push_back(panelText(L"缺失：", L"Missing: ") + std::to_wstring(missing) +
                    panelText(L"（右键可重新链接）", L" (the right button finds them again)"));
  }
  return joined(lines);
}

std::wstring imageTip(CDocData& record, const std::wstring& path) {
  const OpenedImage image(record, AcDb::kForRead);
  if (!image) return {};
  if (TarnClientManager* client = image->clientOf(path)) {
    return path + L"\n" + joined(describeServerImage(*client));
  }
  const auto source = image->localSources().find(path);
  if (source == image->localSources().end()) return {};
  return path + L"\n" + joined(describeImage(path, *source->second.get()));
}

}  // namespace

void ImageDialog::OnTreeRightClick(NMHDR*, LRESULT* result) {
  *result = 0;
  CPoint cursor;
  GetCursorPos(&cursor);
  CPoint point = cursor;
  m_tree.ScreenToClient(&point);
  UINT part = 0;
  HTREEITEM item = m_tree.HitTest(point, &part);
  if (!item || (part & TVHT_ONITEM) == 0) return;
  m_generatePyramid = pyramidsWanted();
  m_tree.SelectItem(item);
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  const bool isImage = item != m_tree.GetRootItem() && record && record->hasImage();
  CMenu menu;
  CMenu* popup = isImage && menu.LoadMenu(IDR_IMAGE_MENU) ? menu.GetSubMenu(0) : nullptr;
  if (popup) {
    ShowImageMenu(cursor, *popup);
  } else {
    ShowRootMenu(cursor);
  }
}

void ImageDialog::ShowRootMenu(CPoint at) {
  m_popup.DestroyMenu();
  m_popup.CreatePopupMenu();
  m_popup.AppendMenu(MF_STRING, ID_ADD_IMAGE, L"添加影像");
  m_popup.AppendMenu(MF_STRING, ID_REMOVE_ALL, L"删除所有影像");
  m_popup.AppendMenu(MF_STRING | (m_generatePyramid ? MF_CHECKED : MF_UNCHECKED),
                     ID_GENERATE_PYRAMID, L"生成金字塔");
  const size_t missing = missingCount(g_dataMap ? g_dataMap->current() : nullptr);
  if (missing > 0) {
    const std::wstring text = panelText(L"重新链接缺失的影像（", L"Relink missing images (") +
                              std::to_wstring(missing) + panelText(L"）...", L")...");
    m_popup.AppendMenu(MF_SEPARATOR);
    m_popup.AppendMenu(MF_STRING, ID_RELINK, text.c_str());
  }
  m_popup.TrackPopupMenu(kMenuFlags, at.x, at.y, this);
}

void ImageDialog::ShowImageMenu(CPoint at, CMenu& popup) {
  const auto mark = [&](UINT id, bool isOn) {
    popup.CheckMenuItem(id, MF_BYCOMMAND | (isOn ? MF_CHECKED : MF_UNCHECKED));
  };
  mark(ID_ANTI_ALIASING, m_antiAliasing);
  mark(ID_STRETCH_EQUALISE, m_stretchMode == 1);
  mark(ID_STRETCH_DEVIATION, m_stretchMode == 2);
  mark(ID_STRETCH_NONE, m_stretchMode != 1 && m_stretchMode != 2);
  if (ChosenItems().size() > 1) {
    popup.AppendMenu(MF_SEPARATOR);
    popup.AppendMenu(MF_STRING, ID_SHOW_CHOSEN,
                     panelText(L"显示所选影像", L"Show the selected").c_str());
    popup.AppendMenu(MF_STRING, ID_HIDE_CHOSEN,
                     panelText(L"隐藏所选影像", L"Hide the selected").c_str());
  }
  popup.TrackPopupMenu(kMenuFlags, at.x, at.y, this);
}

void ImageDialog::OnGeneratePyramid() {
  m_generatePyramid = !m_generatePyramid;
  m_popup.CheckMenuItem(ID_GENERATE_PYRAMID,
                        MF_BYCOMMAND | (m_generatePyramid ? MF_CHECKED : MF_UNCHECKED));
  const auto config = makeObject<IConfigManager>(kPanelSettingSite);
  if (!config.isNull()) config->setValue(kPyramidSetting, m_generatePyramid ? "true" : "false");
}

void ImageDialog::OnTreeTip(NMHDR* header, LRESULT* result) {
  *result = 0;
  auto* tip = reinterpret_cast<NMTVGETINFOTIP*>(header);
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  if (!record || !tip->hItem || tip->cchTextMax < 1) return;
  const std::wstring text = tip->hItem == m_tree.GetRootItem()
                                ? listTip(*record)
                                : imageTip(*record, m_tree.GetItemText(tip->hItem).GetString());
  const size_t length = std::min(text.size(), static_cast<size_t>(tip->cchTextMax - 1));
  std::copy_n(text.begin(), length, tip->pszText);
  tip->pszText[length] = 0;
}
