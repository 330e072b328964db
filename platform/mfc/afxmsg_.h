// Message maps: how a class names the member functions that answer window messages, commands and
// notifications.
//
// Left out: OLE dispatch maps, command-UI updates, command and notification ranges, reflected messages,
// registered messages, and every ON_ macro that the add-in does not use. Otherwise than the original: an
// entry holds a pointer to a typed function that calls the handler, not a member pointer cast to a common
// type, so a call never goes through a type that the handler does not have. A handler whose signature is not
// the documented one does not compile, as with the original.
#pragma once

#include <windows.h>

#include <type_traits>

class CCmdTarget;

/// Marks a member function as a message handler for the reader.
#ifndef afx_msg
#define afx_msg
#endif

#ifndef AFXAPI
#define AFXAPI __stdcall
#endif

/// The notification code of a command that comes from a menu or accelerator; BN_CLICKED has the same value.
#ifndef CN_COMMAND
#define CN_COMMAND 0
#endif

/// One message on its way to a handler, and where the handler's answer is left.
struct AFX_MSG_CALL
{
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    LRESULT result;
};

/// What OnCmdMsg is handed for a notification.
struct AFX_NOTIFY
{
    LRESULT* pResult;
    NMHDR* pNMHDR;
};

/// Filled by OnCmdMsg when the caller only wants to know who would handle a command.
struct AFX_CMDHANDLERINFO
{
    CCmdTarget* pTarget;
    void (*pmf)(CCmdTarget*, AFX_MSG_CALL&);
};

/// Calls the handler of one message-map entry.
typedef void (*AFX_PMSG)(CCmdTarget* pTarget, AFX_MSG_CALL& call);

struct AFX_MSGMAP_ENTRY
{
    UINT nMessage; ///< the window message
    UINT nCode;    ///< control or notification code (low word), or 0
    UINT nID;      ///< control id, or 0 for window messages
    UINT nLastID;  ///< last id of a range; equal to nID here
    AFX_PMSG pfn;  ///< null ends the map
};

struct AFX_MSGMAP
{
    const AFX_MSGMAP* (*pfnGetBaseMap)(); ///< null ends the chain
    const AFX_MSGMAP_ENTRY* lpEntries;
};

/// The class that a handler of exactly this signature belongs to; any other signature does not compile.
template <class Signature, class Handler> struct AfxHandlerTarget
{
    static_assert(!std::is_same_v<Handler, Handler>,
                  "the message handler's signature is not the one its macro asks for");
};
template <class R, class C, class... A> struct AfxHandlerTarget<R(A...), R (C::*)(A...)>
{
    using Type = C;
};
template <class R, class C, class... A> struct AfxHandlerTarget<R(A...), R (C::*)(A...) noexcept>
{
    using Type = C;
};

template <class Signature, auto Handler, class... Arguments>
auto AfxInvokeHandler(CCmdTarget* pTarget, Arguments... arguments)
{
    using Target = typename AfxHandlerTarget<Signature, decltype(Handler)>::Type;
    return (static_cast<Target*>(pTarget)->*Handler)(arguments...);
}

/// Device contexts and windows of a message as the objects that handlers take; defined where CDC and CWnd
/// are.
class CDC;
class CWnd;
CDC* AfxMsgDeviceContext(const AFX_MSG_CALL& call);
CWnd* AfxMsgControl(const AFX_MSG_CALL& call);

/// The numbers that ON_WM_CTLCOLOR handlers know the controls by (CTLCOLOR_STATIC, ...), from the message.
inline UINT AfxMsgControlColor(const AFX_MSG_CALL& call)
{
    return call.message - WM_CTLCOLORMSGBOX;
}

/// WM_CTLCOLORMSGBOX to WM_CTLCOLORSTATIC reach a class as this one message, with the control's kind as a
/// number.
#ifndef WM_CTLCOLOR
#define WM_CTLCOLOR 0x0019
#endif

template <auto Handler> void AfxCallVoid(CCmdTarget* pTarget, AFX_MSG_CALL& call)
{
    AfxInvokeHandler<void(), Handler>(pTarget);
    call.result = 0;
}

template <auto Handler> void AfxCallMessage(CCmdTarget* pTarget, AFX_MSG_CALL& call)
{
    call.result = AfxInvokeHandler<LRESULT(WPARAM, LPARAM), Handler>(pTarget, call.wParam, call.lParam);
}

template <auto Handler> void AfxCallNotify(CCmdTarget* pTarget, AFX_MSG_CALL& call)
{
    AfxInvokeHandler<void(NMHDR*, LRESULT*), Handler>(pTarget, reinterpret_cast<NMHDR*>(call.lParam),
                                                      &call.result);
}

template <auto Handler> void AfxCallEraseBkgnd(CCmdTarget* pTarget, AFX_MSG_CALL& call)
{
    call.result = AfxInvokeHandler<BOOL(CDC*), Handler>(pTarget, AfxMsgDeviceContext(call));
}

template <auto Handler> void AfxCallCtlColor(CCmdTarget* pTarget, AFX_MSG_CALL& call)
{
    call.result = reinterpret_cast<LRESULT>(AfxInvokeHandler<HBRUSH(CDC*, CWnd*, UINT), Handler>(
        pTarget, AfxMsgDeviceContext(call), AfxMsgControl(call), AfxMsgControlColor(call)));
}

/// Declares the class's message map; stands in the class, and what follows it is protected.
#define DECLARE_MESSAGE_MAP()                                                                                \
protected:                                                                                                   \
    static const AFX_MSGMAP* GetThisMessageMap();                                                            \
    const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                                               \
    const AFX_MSGMAP* theClass::GetMessageMap() const                                                        \
    {                                                                                                        \
        return GetThisMessageMap();                                                                          \
    }                                                                                                        \
    const AFX_MSGMAP* theClass::GetThisMessageMap()                                                          \
    {                                                                                                        \
        using ThisClass [[maybe_unused]] = theClass;                                                         \
        using TheBaseClass = baseClass;                                                                      \
        static constexpr AFX_MSGMAP_ENTRY _messageEntries[] = {

#define END_MESSAGE_MAP()                                                                                    \
    {                                                                                                        \
        0, 0, 0, 0, nullptr                                                                                  \
    }                                                                                                        \
    }                                                                                                        \
    ;                                                                                                        \
    static constexpr AFX_MSGMAP messageMap = {&TheBaseClass::GetThisMessageMap, &_messageEntries[0]};        \
    return &messageMap;                                                                                      \
    }

/// A message of one's own: `afx_msg LRESULT OnName(WPARAM, LPARAM)`.
#define ON_MESSAGE(message, memberFxn) {message, 0, 0, 0, &AfxCallMessage<memberFxn>},
/// A command (menu item, button): `afx_msg void OnName()`.
#define ON_COMMAND(id, memberFxn) {WM_COMMAND, CN_COMMAND, UINT(id), UINT(id), &AfxCallVoid<memberFxn>},
/// A control's notification through WM_COMMAND: `afx_msg void OnName()`.
#define ON_CONTROL(wNotifyCode, id, memberFxn)                                                               \
    {WM_COMMAND, WORD(wNotifyCode), UINT(id), UINT(id), &AfxCallVoid<memberFxn>},
/// A button was clicked: `afx_msg void OnName()`.
#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(BN_CLICKED, id, memberFxn)
/// A control's notification through WM_NOTIFY: `afx_msg void OnName(NMHDR* pNMHDR, LRESULT* pResult)`.
#define ON_NOTIFY(wNotifyCode, id, memberFxn)                                                                \
    {WM_NOTIFY, WORD(int(wNotifyCode)), UINT(id), UINT(id), &AfxCallNotify<memberFxn>},

/// `afx_msg void OnDestroy()`
#define ON_WM_DESTROY() {WM_DESTROY, 0, 0, 0, &AfxCallVoid<&ThisClass::OnDestroy>},
/// `afx_msg void OnNcDestroy()`
#define ON_WM_NCDESTROY() {WM_NCDESTROY, 0, 0, 0, &AfxCallVoid<&ThisClass::OnNcDestroy>},
/// `afx_msg void OnClose()`
#define ON_WM_CLOSE() {WM_CLOSE, 0, 0, 0, &AfxCallVoid<&ThisClass::OnClose>},
/// `afx_msg BOOL OnEraseBkgnd(CDC* pDC)`
#define ON_WM_ERASEBKGND() {WM_ERASEBKGND, 0, 0, 0, &AfxCallEraseBkgnd<&ThisClass::OnEraseBkgnd>},
/// `afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor)`
#define ON_WM_CTLCOLOR() {WM_CTLCOLOR, 0, 0, 0, &AfxCallCtlColor<&ThisClass::OnCtlColor>},
