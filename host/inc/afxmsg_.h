// Message maps: which function of a window handles which message.
#pragma once

#include "afxtypes.h"

class CWnd;

struct AFX_MSGMAP_ENTRY {
  UINT message = 0;
  UINT code = 0;  ///< of WM_COMMAND and WM_NOTIFY
  UINT id = 0;    ///< control or command of these
  LRESULT (*call)(CWnd* window, WPARAM wParam, LPARAM lParam) = nullptr;  ///< null ends the map
};

struct AFX_MSGMAP {
  const AFX_MSGMAP* (*baseMap)();
  const AFX_MSGMAP_ENTRY* entries;
};

#define afx_msg

#define DECLARE_MESSAGE_MAP()                   \
 protected:                                     \
  static const AFX_MSGMAP* GetThisMessageMap(); \
  const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, theBase)          \
  const AFX_MSGMAP* theClass::GetMessageMap() const { \
    return GetThisMessageMap();                       \
  }                                                   \
  const AFX_MSGMAP* theClass::GetThisMessageMap() {   \
    using ThisClass [[maybe_unused]] = theClass;      \
    using BaseClass = theBase;                        \
    static const AFX_MSGMAP_ENTRY entries[] = {
#define END_MESSAGE_MAP()                                                                 \
  {}                                                                                      \
  }                                                                                       \
  ;                                                                                       \
  static const AFX_MSGMAP map = {[] { return BaseClass::GetThisMessageMap(); }, entries}; \
  return &map;                                                                            \
  }

#define TARN_MESSAGE_CALL(body)                               \
  [](CWnd* window, WPARAM wParam, LPARAM lParam) -> LRESULT { \
    auto* self = static_cast<ThisClass*>(window);             \
    (void)wParam;                                             \
    (void)lParam;                                             \
    body                                                      \
  }

/// void function()
#define ON_COMMAND(id, function)                                                    \
  { WM_COMMAND, BN_CLICKED, id, TARN_MESSAGE_CALL((self->*function)(); return 1;) } \
  ,
#define ON_BN_CLICKED(id, function) ON_COMMAND(id, function)
#define ON_LBN_DBLCLK(id, function)                                                 \
  { WM_COMMAND, LBN_DBLCLK, id, TARN_MESSAGE_CALL((self->*function)(); return 1;) } \
  ,
/// void function(NMHDR*, LRESULT*)
#define ON_NOTIFY(code, id, function)                                                         \
  {                                                                                           \
    WM_NOTIFY, code, id,                                                                      \
        TARN_MESSAGE_CALL(LRESULT result = 0; /* NOLINTNEXTLINE(performance-no-int-to-ptr) */ \
                          (self->*function)(reinterpret_cast<NMHDR*>(lParam), &result);       \
                          return result;)                                                     \
  }                                                                                           \
  ,
/// int OnCreate(LPCREATESTRUCT)
#define ON_WM_CREATE()                                                                      \
  {                                                                                         \
    WM_CREATE, 0, 0,                                                                        \
        TARN_MESSAGE_CALL(/* NOLINTNEXTLINE(performance-no-int-to-ptr) */                   \
                          return self->OnCreate(reinterpret_cast<LPCREATESTRUCT>(lParam));) \
  }                                                                                         \
  ,
/// void OnSize(UINT type, int width, int height)
#define ON_WM_SIZE()                                                               \
  {                                                                                \
    WM_SIZE, 0, 0,                                                                 \
        TARN_MESSAGE_CALL(self->OnSize(static_cast<UINT>(wParam),                  \
                                       static_cast<int>(lParam & 0xffff),          \
                                       static_cast<int>((lParam >> 16) & 0xffff)); \
                          return 0;)                                               \
  }                                                                                \
  ,
/// void OnContextMenu(CWnd*, CPoint)
#define ON_WM_CONTEXTMENU()                                                                \
  {                                                                                        \
    WM_CONTEXTMENU, 0, 0,                                                                  \
        TARN_MESSAGE_CALL(/* NOLINTNEXTLINE(performance-no-int-to-ptr) */                  \
                          self->OnContextMenu(                                             \
                              reinterpret_cast<CWnd*>(wParam),                             \
                              CPoint(static_cast<std::int16_t>(lParam & 0xffff),           \
                                     static_cast<std::int16_t>((lParam >> 16) & 0xffff))); \
                          return 0;)                                                       \
  }                                                                                        \
  ,
/// void OnDropFiles(HDROP)
#define ON_WM_DROPFILES()                                                                \
  {                                                                                      \
    WM_DROPFILES, 0, 0,                                                                  \
        TARN_MESSAGE_CALL(/* NOLINTNEXTLINE(performance-no-int-to-ptr) */                \
                          self->OnDropFiles(reinterpret_cast<HDROP>(wParam)); return 0;) \
  }                                                                                      \
  ,
