// Run-time class information: CObject, CRuntimeClass and the DYNAMIC macros.
//
// Left out of the original: creation by name (DYNCREATE), serialization (SERIAL, schema numbers), the list of
// all classes of a module, IsKindOf, AssertValid and Dump. Otherwise than the original: CObject has no slots
// for Serialize, AssertValid and Dump, and IMPLEMENT_DYNAMIC yields a constant that needs no code to run at
// load time.
#pragma once

#include <afxver_.h>

class CObject;

/// What is known about one class at run time. Objects of this type are constants and live as long as the
/// module.
struct CRuntimeClass
{
    LPCSTR m_lpszClassName;            ///< the class's name as written in the source, for example "CDialog"
    int m_nObjectSize;                 ///< sizeof the class, in bytes
    const CRuntimeClass* m_pBaseClass; ///< null for CObject
};

/// Base of every class with run-time class information. Not copyable.
class CObject
{
public:
    static const CRuntimeClass classCObject;

    /// The run-time class of the object's own (most derived) class that names itself with DECLARE_DYNAMIC.
    virtual CRuntimeClass* GetRuntimeClass() const = 0;
    virtual ~CObject() = default;

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

protected:
    CObject() = default;
};

/// Address of the run-time class of `class_name`. Not const, as in the original, although nobody may write to
/// it.
#define RUNTIME_CLASS(class_name) (const_cast<CRuntimeClass*>(&class_name::class##class_name))

/// In the class: declares its run-time class. Needs IMPLEMENT_DYNAMIC in one source file. Leaves access at
/// public.
#define DECLARE_DYNAMIC(class_name)                                                                          \
public:                                                                                                      \
    static const CRuntimeClass class##class_name;                                                            \
    CRuntimeClass* GetRuntimeClass() const override;

/// In one source file, without a semicolon: defines the run-time class and names its base.
#define IMPLEMENT_DYNAMIC(class_name, base_class_name)                                                       \
    constinit const CRuntimeClass class_name::class##class_name = {                                          \
        #class_name, sizeof(class_name), &base_class_name::class##base_class_name};                          \
    CRuntimeClass* class_name::GetRuntimeClass() const                                                       \
    {                                                                                                        \
        return RUNTIME_CLASS(class_name);                                                                    \
    }
