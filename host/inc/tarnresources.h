// Resources of modules: dialogs and menus as tables. Not part of the public interface elsewhere.
#pragma once

#include <cstddef>

#include "afxtypes.h"

enum class TarnLanguage { kChinese, kEnglish };
enum class TarnControl { kTree, kButton, kCheckList };

/// Places and sizes are dialog units.
struct TarnControlResource {
  int id;
  TarnControl kind;
  const ACHAR* caption;
  DWORD style;  ///< with WS_VISIBLE it is seen
  int x, y, width, height;
};

struct TarnDialogResource {
  UINT id;
  TarnLanguage language;
  const ACHAR* font;  ///< by name and points; the size of a dialog unit follows from its size
  int fontPoints;
  int width, height;
  const TarnControlResource* controls;
  size_t controlCount;
};

struct TarnMenuItem {
  UINT id;            ///< 0 for a sub-menu
  int depth;          ///< 0: a pop-up of the menu bar; deeper ones stand in the last item above
  const ACHAR* text;  ///< null: a separator
};

struct TarnMenuResource {
  UINT id;
  TarnLanguage language;
  const TarnMenuItem* items;
  size_t itemCount;
};

/// The tables must live as long as the process. A copy in the language of the host (system variable
/// LOCALE: "CHS", "ENU") is preferred. One of the same id and language takes the earlier one's
/// place.
ACADHOST_EXPORT void tarnAddDialogResource(const TarnDialogResource& dialog);
ACADHOST_EXPORT void tarnAddMenuResource(const TarnMenuResource& menu);
