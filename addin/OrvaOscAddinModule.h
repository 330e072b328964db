// The DLL's module object: lock count, object map, registration.
#pragma once

#include "OrvaOscAddin.h"
#include "res/resource.h"

#include <afxwin.h>
#include <atlbase.h>

/// One instance for the process, created when the DLL is loaded. Its own registration script is Outlook's
/// add-in entry.
class COrvaOscAddinModule : public CAtlDllModuleT<COrvaOscAddinModule>
{
public:
    DECLARE_LIBID(LIBID_OrvaOscAddinLib)
    DECLARE_REGISTRY_APPID_RESOURCEID(IDR_ORVAOSCADDIN, "{AEC51F89-30A3-4488-83EB-705931CF2623}")
};

extern COrvaOscAddinModule _AtlModule;
