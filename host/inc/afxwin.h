// The part of the window classes that applications of the host use, free of any toolkit: texts,
// points, messages, windows, dialogs, controls and menus. Behind them stands the user interface of
// the running program, with windows or with lines of text.
#pragma once

#include "afxcmn.h"
#include "afxctrls.h"
#include "afxdialog.h"
#include "afxdlgs.h"
#include "afxmenu.h"
#include "afxmsg_.h"
#include "afxstr.h"
#include "afxtypes.h"
#include "afxwnd.h"
