#include "afxthreadstate.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string>

namespace
{

// The slot and everything that hangs on it in any thread.
class CThreadStates
{
public:
    CThreadStates() : m_slot(TlsAlloc()) {}

    ~CThreadStates()
    {
        // The module goes: whoever still held the lock is no more, so it is not taken here.
        if (m_slot != TLS_OUT_OF_INDEXES)
        {
            TlsFree(m_slot);
        }
    }

    CAfxThreadState& Current()
    {
        if (m_slot == TLS_OUT_OF_INDEXES)
        {
            throw std::bad_alloc();
        }
        if (void* present = TlsGetValue(m_slot))
        {
            return *static_cast<CAfxThreadState*>(present);
        }
        auto state = std::make_unique<CAfxThreadState>();
        CAfxThreadState& result = *state;
        {
            const CLock lock(m_lock);
            m_states.push_back(std::move(state));
        }
        TlsSetValue(m_slot, &result);
        return result;
    }

    void FreeCurrent()
    {
        void* present = m_slot == TLS_OUT_OF_INDEXES ? nullptr : TlsGetValue(m_slot);
        if (!present)
        {
            return;
        }
        TlsSetValue(m_slot, nullptr);
        const CLock lock(m_lock);
        std::erase_if(m_states, [present](const auto& state) { return state.get() == present; });
    }

private:
    class CLock
    {
    public:
        explicit CLock(SRWLOCK& lock) : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
        ~CLock() { ReleaseSRWLockExclusive(&m_lock); }
        CLock(const CLock&) = delete;
        CLock& operator=(const CLock&) = delete;

    private:
        SRWLOCK& m_lock;
    };

    const DWORD m_slot;
    SRWLOCK m_lock = SRWLOCK_INIT;
    std::vector<std::unique_ptr<CAfxThreadState>> m_states;
};

CThreadStates& ThreadStates()
{
    static CThreadStates states;
    return states;
}

void Trace(LPCWSTR where, const std::wstring& what)
{
    OutputDebugStringW((std::wstring(where) + L": " + what + L"\n").c_str());
}

std::wstring Widen(const char* text)
{
    return std::wstring(text, text + std::char_traits<char>::length(text));
}

} // namespace

void CAfxThreadState::FreeTemporaries(size_t count)
{
    // From the last to the first, as blocks end.
    while (m_temporaries.size() > count)
    {
        m_temporaries.pop_back();
    }
}

CObject* CAfxThreadState::FindTemporary(const std::type_info& type, void* handle) const
{
    const auto found = std::find_if(m_temporaries.begin(), m_temporaries.end(), [&](const CTemporary& each) {
        return *each.type == type && each.handle == handle;
    });
    return found == m_temporaries.end() ? nullptr : found->object.get();
}

CAfxThreadState& AfxGetThreadState()
{
    return ThreadStates().Current();
}

void AfxFreeThreadState()
{
    ThreadStates().FreeCurrent();
}

void AfxTraceCaughtException(LPCWSTR lpszWhere) noexcept
{
    try
    {
        try
        {
            // cppcheck-suppress rethrowNoCurrentException; called while an exception is being handled
            throw;
        }
        catch (CException* exception)
        {
            WCHAR text[512] = L"";
            exception->GetErrorMessage(text, ARRAYSIZE(text));
            const std::wstring type = Widen(exception->GetRuntimeClass()->m_lpszClassName);
            exception->Delete();
            Trace(lpszWhere, type + L" " + text);
        }
        catch (const std::exception& exception)
        {
            Trace(lpszWhere, Widen(exception.what()));
        }
        catch (...)
        {
            Trace(lpszWhere, L"unknown exception");
        }
    }
    catch (...)
    {
        // No memory even for the message.
        OutputDebugStringW(lpszWhere);
    }
}
