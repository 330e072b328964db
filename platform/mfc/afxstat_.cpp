#include "afxstat_.h"

#include "afxthreadstate.h"

#include <string>
#include <utility>

// The module this library is linked into; its address is the module's handle, made by the linker.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace
{

std::wstring ModulePath(HINSTANCE module)
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;)
    {
        const DWORD length = GetModuleFileNameW(module, path.data(), DWORD(path.size()));
        if (length < path.size())
        {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

// The context that the loader made of a DLL's manifest when it loaded the DLL, with a reference of its own;
// null if it made none. A program's own context is of another resource than ours.
HANDLE LoadersContext(HINSTANCE module)
{
    ACTIVATION_CONTEXT_BASIC_INFORMATION information = {};
    if (module == GetModuleHandleW(nullptr) ||
        !QueryActCtxW(QUERY_ACTCTX_FLAG_ACTCTX_IS_HMODULE, module, nullptr, ActivationContextBasicInformation,
                      &information, sizeof information, nullptr))
    {
        return nullptr;
    }
    return information.hActCtx;
}

HANDLE MakeContext(HINSTANCE module)
{
    const std::wstring path = ModulePath(module);
    ACTCTXW description = {};
    description.cbSize = sizeof description;
    description.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    description.lpSource = path.c_str();
    description.lpResourceName = MAKEINTRESOURCEW(2); // ISOLATIONAWARE_MANIFEST_RESOURCE_ID
    description.hModule = module;
    return CreateActCtxW(&description);
}

} // namespace

AFX_MODULE_STATE::AFX_MODULE_STATE(HINSTANCE hInstance)
    : m_hCurrentInstanceHandle(hInstance), m_hCurrentResourceHandle(hInstance)
{
}

AFX_MODULE_STATE::~AFX_MODULE_STATE()
{
    if (m_hActCtx && m_hActCtx != INVALID_HANDLE_VALUE)
    {
        ReleaseActCtx(m_hActCtx);
    }
}

void AFX_MODULE_STATE::CreateActivationContext()
{
    if (m_hActCtx)
    {
        return;
    }
    // Reading a manifest and finding what it asks for takes longer than all else that happens at a
    // connection; the loader has done it.
    const HANDLE loaders = LoadersContext(m_hCurrentInstanceHandle);
    const HANDLE context = loaders != nullptr ? loaders : MakeContext(m_hCurrentInstanceHandle);
    // Two threads may get here at once; the first one's context stays.
    if (InterlockedCompareExchangePointer(&m_hActCtx, context, nullptr) != nullptr &&
        context != INVALID_HANDLE_VALUE)
    {
        ReleaseActCtx(context);
    }
}

AFX_MODULE_STATE* AFXAPI AfxGetStaticModuleState()
{
    static AFX_MODULE_STATE state(reinterpret_cast<HINSTANCE>(&__ImageBase));
    return &state;
}

AFX_MODULE_STATE* AFXAPI AfxGetModuleState()
{
    AFX_MODULE_STATE* state = AfxGetThreadState().m_moduleState;
    return state ? state : AfxGetStaticModuleState();
}

AFX_MODULE_STATE* AFXAPI AfxSetModuleState(AFX_MODULE_STATE* pNewState)
{
    return std::exchange(AfxGetThreadState().m_moduleState, pNewState);
}

AFX_MAINTAIN_STATE2::AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* pModuleState)
    : m_nTemporaryObjects(AfxGetThreadState().TemporaryCount())
{
    // What can throw comes before the switch, which nobody would undo.
    pModuleState->CreateActivationContext();
    m_pPrevModuleState = AfxSetModuleState(pModuleState);
    if (pModuleState->m_hActCtx != INVALID_HANDLE_VALUE)
    {
        m_bValidActCtxCookie = ActivateActCtx(pModuleState->m_hActCtx, &m_ulActCtxCookie);
    }
}

AFX_MAINTAIN_STATE2::~AFX_MAINTAIN_STATE2()
{
    AfxGetThreadState().FreeTemporaries(m_nTemporaryObjects);
    AfxSetModuleState(m_pPrevModuleState);
    if (m_bValidActCtxCookie)
    {
        // Forced: a context that somebody left active above ours would otherwise raise a structured
        // exception.
        DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, m_ulActCtxCookie);
    }
}
