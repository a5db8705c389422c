#include <algorithm>

#include "adui.h"
#include "afxcmn.h"
#include "afxctrls.h"
#include "host/ui/resources.h"
#include "host/ui/windowinput.h"
#include "host/ui/windowstate.h"

using tarn::host::WindowAccess;
using tarn::host::WindowState;

namespace {

/// Pixels of four dialog units across and of eight down, in the usual font of kBasePoints.
constexpr int kBaseWidth = 7;
constexpr int kBaseHeight = 15;
constexpr int kBasePoints = 9;

CRect pixels(int x, int y, int width, int height, int points) {
  const auto across = [points](int units) { return units * kBaseWidth * points / kBasePoints / 4; };
  const auto down = [points](int units) { return units * kBaseHeight * points / kBasePoints / 8; };
  return {across(x), down(y), across(x + width), down(y + height)};
}

std::vector<CDialog*>& openDialogs() {
  static std::vector<CDialog*> dialogs;
  return dialogs;
}

std::unique_ptr<CWnd> makeControl(TarnControl kind) {
  switch (kind) {
    case TarnControl::kTree:
      return std::make_unique<CTreeCtrl>();
    case TarnControl::kCheckList:
      return std::make_unique<CCheckListBox>();
    default:
      return std::make_unique<CButton>();
  }
}

std::unique_ptr<WindowState> stateOf(const TarnControlResource& control, CWnd& parent, int points) {
  auto state = std::make_unique<WindowState>();
  state->parent = &parent;
  state->rect = pixels(control.x, control.y, control.width, control.height, points);
  state->style = control.style;
  state->id = control.id;
  state->visible = (control.style & WS_VISIBLE) != 0;
  state->text = control.caption;
  return state;
}

}  // namespace

CWnd* tarn::host::dialogOf(int resource) {
  for (CDialog* dialog : openDialogs()) {
    if (dialog->GetDlgCtrlID() == resource) return dialog;
  }
  return nullptr;
}

void DDX_Control(CDataExchange* exchange, int id, CWnd& control) {
  CWnd* standing = exchange->m_pDlgWnd->GetDlgItem(id);
  if (!standing || standing == &control) return;
  WindowAccess::replace(*standing, control);
  WindowAccess::tellMade(control);
}

CDialog::CDialog(UINT resource, CWnd*) : resource_(resource) {}

CDialog::~CDialog() {
  CDialog::DestroyWindow();
}

BOOL CDialog::Create(UINT resource, CWnd* parent) {
  const TarnDialogResource* table = tarn::host::findDialog(resource ? resource : resource_);
  if (!table || GetSafeHwnd()) return FALSE;
  auto state = std::make_unique<WindowState>();
  state->parent = parent;
  state->rect = pixels(0, 0, table->width, table->height, table->fontPoints);
  state->style = WS_CHILD;
  state->id = static_cast<int>(table->id);
  if (tarn::host::WindowView* around = WindowAccess::viewOf(parent)) {
    state->view = tarn::host::windowSystem().makePane(*around, *this);
    state->view->setGeometry(state->rect);
  }
  WindowAccess::make(*this, std::move(state));
  openDialogs().push_back(this);
  for (size_t i = 0; i < table->controlCount; ++i) {
    controls_.push_back(makeControl(table->controls[i].kind));
    WindowAccess::make(*controls_.back(), stateOf(table->controls[i], *this, table->fontPoints));
  }
  OnInitDialog();
  for (const auto& control : controls_) {
    if (control->GetSafeHwnd()) WindowAccess::tellMade(*control);
  }
  return TRUE;
}

BOOL CDialog::DestroyWindow() {
  const BOOL was = CWnd::DestroyWindow();
  std::vector<CDialog*>& all = openDialogs();
  all.erase(std::remove(all.begin(), all.end(), this), all.end());
  controls_.clear();
  return was;
}

BOOL CDialog::OnInitDialog() {
  CDataExchange exchange{this, FALSE};
  DoDataExchange(&exchange);
  return TRUE;
}

void CDialog::DoDataExchange(CDataExchange*) {}

BEGIN_MESSAGE_MAP(CDialog, CWnd)
END_MESSAGE_MAP()

BEGIN_MESSAGE_MAP(CAdUiBaseDialog, CDialog)
END_MESSAGE_MAP()
