#include <afxobj_.h>

constinit const CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), nullptr};

CObject::~CObject() = default;

CRuntimeClass* CObject::GetRuntimeClass() const
{
    return RUNTIME_CLASS(CObject);
}

BOOL CObject::IsKindOf(const CRuntimeClass* runtimeClass) const
{
    return GetRuntimeClass()->IsDerivedFrom(runtimeClass);
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* baseClass) const
{
    for (const CRuntimeClass* candidate = this; candidate != nullptr; candidate = candidate->m_pBaseClass)
    {
        if (candidate == baseClass)
        {
            return TRUE;
        }
    }
    return FALSE;
}
