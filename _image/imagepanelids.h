// Numbers of the panel's dialog, controls and commands.
#pragma once

namespace tarn::image {

enum : unsigned {
  IDD_IMAGE_LIST = 1131,
  IDR_IMAGE_MENU = 1130,
};

enum : int {
  IDC_PANEL_OK = 1,
  IDC_LIST_DELETE = 106,
  IDC_LIST_ALL = 110,
  IDC_IMAGE_TREE = 119,
  IDC_IMAGE_LIST = 1132,
  IDC_LIST_ADD = 1133,
  IDC_LIST_INVERT = 1135,
};

enum : unsigned {
  ID_REMOVE_IMAGE = 1120,
  ID_ADD_IMAGE = 1121,
  ID_REMOVE_ALL = 1122,
  ID_RECTIFY_IMAGE = 1123,
  ID_ANTI_ALIASING = 1124,
  ID_STRETCH_EQUALISE = 1126,
  ID_STRETCH_DEVIATION = 1127,
  ID_GENERATE_PYRAMID = 1128,
  ID_SHOW_CHOSEN = 1141,
  ID_HIDE_CHOSEN = 1142,
  ID_RELINK = 1143,
  ID_STRETCH_NONE = 32780,
  ID_MOVE_UP = 32784,
  ID_MOVE_DOWN = 32785,
};

/// Items that the host puts into the menu of a dock bar and that the panel's bar goes without.
enum : unsigned { ID_BAR_ALLOW_DOCKING = 4097, ID_BAR_HIDE = 4098 };

}  // namespace tarn::image
