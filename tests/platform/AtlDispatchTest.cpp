// Tests of calls by name and id: where the type information comes from, and what there is without one.
#include "AtlTestModule.h"

namespace
{

using namespace orva::test;

struct INamed : public IDispatch
{
    STDMETHOD(get_Name)(BSTR* name) = 0;
};
// What the type library knows the interface by, and an identifier that it does not know.
constexpr IID kNamed = {0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc0, 0x03}};
constexpr IID kHidden = {0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc0, 0x01}};

template <const IID* Interface, const GUID* Library, WORD Major, WORD Minor>
class ATL_NO_VTABLE CDispatched : public CComObjectRootEx<CComSingleThreadModel>,
                                  public IDispatchImpl<INamed, Interface, Library, Major, Minor>
{
public:
    BEGIN_COM_MAP(CDispatched)
        COM_INTERFACE_ENTRY(IDispatch)
    END_COM_MAP()

    STDMETHOD(get_Name)(BSTR* name) override
    {
        *name = CComBSTR(L"its name").Detach();
        return S_OK;
    }
};

using CNamed = CDispatched<&kNamed, &kTestLibrary, 1, 0>;
using CHidden = CDispatched<&kHidden, &kTestLibrary, 1, 0>;
using CNamedByOwnLibrary = CDispatched<&kNamed, &CAtlModule::m_libid, 0xFFFF, 0xFFFF>;

class AtlDispatch : public CTestModuleTest
{
protected:
    void RegisterLibrary()
    {
        ASSERT_EQ(AtlRegisterTypeLib(_AtlBaseModule.GetModuleInstance(), nullptr), S_OK);
    }
    template <class Class> static CComPtr<IDispatch> Make() { return {new CComObject<Class>}; }
    static HRESULT IdOf(IDispatch* object, const wchar_t* name, DISPID* id)
    {
        auto* names = const_cast<LPOLESTR>(name);
        return object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, id);
    }
    static HRESULT Get(IDispatch* object, DISPID id, VARIANT* result)
    {
        DISPPARAMS none = {};
        return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, result, nullptr,
                              nullptr);
    }
};

TEST_F(AtlDispatch, ALibraryThatWasNotRegisteredIsLookedForAgain)
{
    const CComPtr<IDispatch> object = Make<CNamed>();
    DISPID id = 0;
    CComVariant name;
    EXPECT_EQ(IdOf(object, L"Name", &id), TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(Get(object, 20, &name), TYPE_E_LIBNOTREGISTERED);
    RegisterLibrary();
    EXPECT_EQ(IdOf(object, L"Name", &id), S_OK);
    EXPECT_EQ(id, 20);
    EXPECT_EQ(Get(object, id, &name), S_OK);
    ASSERT_EQ(name.vt, VT_BSTR);
    EXPECT_STREQ(name.bstrVal, L"its name");
}

TEST_F(AtlDispatch, TheModulesOwnLibraryNeedsNoRegistration)
{
    const CComPtr<IDispatch> object = Make<CNamedByOwnLibrary>();
    CComVariant name;
    EXPECT_EQ(Get(object, 20, &name), S_OK);
    ASSERT_EQ(name.vt, VT_BSTR);
    EXPECT_STREQ(name.bstrVal, L"its name");
}

TEST_F(AtlDispatch, AnInterfaceThatTheLibraryLacksCannotBeCalledByName)
{
    RegisterLibrary();
    const CComPtr<IDispatch> object = Make<CHidden>();
    DISPID id = 0;
    EXPECT_EQ(IdOf(object, L"Name", &id), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(Get(object, 20, nullptr), TYPE_E_ELEMENTNOTFOUND);
}

TEST_F(AtlDispatch, ThereIsOneTypeInformationForWhoHasAPlaceForIt)
{
    const CComPtr<IDispatch> object = Make<CNamedByOwnLibrary>();
    CComPtr<ITypeInfo> info;
    EXPECT_EQ(object->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(object->GetTypeInfo(1, LOCALE_USER_DEFAULT, &info.p), DISP_E_BADINDEX);
    EXPECT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr), E_POINTER);
    EXPECT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info.p), S_OK);
    EXPECT_TRUE(info);
}

} // namespace
