// What the class library remembers for each thread: module state, windows by handle, temporary objects.
//
// Kept in a slot of TlsAlloc, not in a thread_local: the library lives in a DLL that is loaded late and
// unloaded early, and must need no code at the start and end of threads that are not its own.
#pragma once

#include "afxwin.h"

#include <memory>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

class CAfxThreadState
{
public:
    AFX_MODULE_STATE* m_moduleState = nullptr; ///< null: the module's own
    CWinThread* m_currentThread = nullptr;     ///< set in threads of AfxBeginThread only
    MSG m_lastSentMessage = {};                ///< what CWnd::Default hands on
    std::unordered_map<HWND, CWnd*> m_attachedWindows;

    /// The temporary object of class T around `handle`: the present one or a new one. `Member` holds the
    /// handle.
    template <class T, auto Member, class Handle> T* Temporary(Handle handle);

    size_t TemporaryCount() const { return m_temporaries.size(); }
    /// Frees the temporary objects made since there were `count` of them.
    void FreeTemporaries(size_t count);

private:
    struct CTemporary
    {
        const std::type_info* type;
        void* handle;
        std::unique_ptr<CObject> object;
    };

    CObject* FindTemporary(const std::type_info& type, void* handle) const;

    std::vector<CTemporary> m_temporaries;
};

/// The calling thread's state, made at its first use. Throws std::bad_alloc when that fails.
CAfxThreadState& AfxGetThreadState();

/// Frees the calling thread's state. For threads that end here; what other threads leave is freed with the
/// module.
void AfxFreeThreadState();

/// Says on the debugger's channel what was caught and, if it is a CException, deletes it. Only inside a catch
/// block.
void AfxTraceCaughtException(LPCWSTR lpszWhere) noexcept;

/// An object that only borrows its handle.
template <class T, auto Member> class CAfxBorrowing : public T
{
public:
    template <class Handle> explicit CAfxBorrowing(Handle handle) { this->*Member = handle; }
    ~CAfxBorrowing() override { this->*Member = nullptr; }
};

template <class T, auto Member, class Handle> T* CAfxThreadState::Temporary(Handle handle)
{
    if (CObject* present = FindTemporary(typeid(T), handle))
    {
        return static_cast<T*>(present);
    }
    auto object = std::make_unique<CAfxBorrowing<T, Member>>(handle);
    T* result = object.get();
    m_temporaries.push_back({&typeid(T), handle, std::move(object)});
    return result;
}
