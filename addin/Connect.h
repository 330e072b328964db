// The add-in object: the one COM object that Outlook creates for the add-in.
#pragma once

#include "addin/OrvaOscAddinModule.h"

#include <AddInDesignerObjects.h>
#include <Office.h>
#include <OfficeObjects.h>
#include <atlcom.h>

/// The class's primary dual interface. It has no operations of its own and is not in the type library.
MIDL_INTERFACE("3C3B6E0B-6A0F-4C0B-9C0E-5D2D1F0B7A41") IConnect : public IDispatch{};
extern const IID IID_IConnect;

/// The Office add-in (_IDTExtensibility2), the ribbon provider, the target of the ribbon's callbacks and the
/// event sink of the menu button. Outlook creates it through the class object, plainly or aggregated, and
/// calls it on its UI thread only (apartment model).
///
/// No C++ exception leaves an operation; it is caught and logged.
class CConnect
    : public CComObjectRootEx<CComSingleThreadModel>,
      public CComCoClass<CConnect, &CLSID_Connect>,
      public IDispatchImpl<IConnect, &IID_IConnect, &LIBID_OrvaOscAddinLib, 1, 0>,
      public IDispatchImpl<_IDTExtensibility2, &IID__IDTExtensibility2, &LIBID_AddInDesignerObjects, 1, 0>,
      public IDispatchImpl<IRibbonExtensibility, &IID_IRibbonExtensibility, &LIBID_Office, 2, 4>,
      public IDispatchImpl<IRibbonCallback, &IID_IRibbonCallback, &LIBID_OrvaOscAddinLib, 1, 0>,
      public IDispEventSimpleImpl<1, CConnect, &DIID__CommandBarButtonEvents>
{
public:
    DECLARE_REGISTRY_RESOURCEID(IDR_CONNECT)
    DECLARE_PROTECT_FINAL_CONSTRUCT()

    // IDispatch is IRibbonCallback's: Office looks the callbacks' names up on the object.
    BEGIN_COM_MAP(CConnect)
        COM_INTERFACE_ENTRY2(IDispatch, IRibbonCallback)
        COM_INTERFACE_ENTRY_IID(IID_IConnect, IConnect)
        COM_INTERFACE_ENTRY(_IDTExtensibility2)
        COM_INTERFACE_ENTRY(IRibbonExtensibility)
        COM_INTERFACE_ENTRY(IRibbonCallback)
    END_COM_MAP()

    // Empty: Invoke handles the click itself.
    BEGIN_SINK_MAP(CConnect)
    END_SINK_MAP()

    /// Serves every dispatch interface above and the click event.
    ///
    /// Ribbon callbacks (42000 to 42009) go to IRibbonCallback's dispatcher. The click (1) shows the About
    /// dialog. Every other id, the click's too, and a callback that does not exist go to
    /// _IDTExtensibility2's dispatcher, whose result is returned.
    STDMETHOD(Invoke)
    (DISPID dispIdMember, REFIID riid, LCID lcid, WORD wFlags, DISPPARAMS* pDispParams, VARIANT* pVarResult,
     EXCEPINFO* pExcepInfo, UINT* puArgErr) override;

    /// _IDTExtensibility2. OnConnection returns S_OK whatever happens in it; OnDisconnection passes on only
    /// the failure of ending the click subscription.
    STDMETHOD(OnConnection)
    (IDispatch* Application, ext_ConnectMode ConnectMode, IDispatch* AddInInst, SAFEARRAY** custom) override;
    STDMETHOD(OnDisconnection)(ext_DisconnectMode RemoveMode, SAFEARRAY** custom) override;
    STDMETHOD(OnAddInsUpdate)(SAFEARRAY** custom) override;
    STDMETHOD(OnStartupComplete)(SAFEARRAY** custom) override;
    STDMETHOD(OnBeginShutdown)(SAFEARRAY** custom) override;

    /// IRibbonExtensibility. E_POINTER without RibbonXml; an empty string for any Office but version 14, else
    /// the Backstage markup in the user's language. The ribbon's id is ignored.
    STDMETHOD(GetCustomUI)(BSTR RibbonID, BSTR* RibbonXml) override;

    /// IRibbonCallback: the explicit update check, and the two pictures (see LoadPngPicture for the results).
    STDMETHOD(ButtonClicked)(IDispatch* ribbonControl) override;
    STDMETHOD(GetImageLogo)(IDispatch* pControl, IPictureDisp** ppdispImage) override;
    STDMETHOD(GetImageIcon)(IDispatch* pControl, IPictureDisp** ppdispImage) override;

private:
    void AttachToHost(IDispatch* application);
    void InsertMenuForOldOffice(int officeVersion);
    void CheckForUpdateAtStart();
    HRESULT InsertMenuCommands();
    HRESULT AddMenuButton(IDispatch* commandBars);

    CComPtr<IDispatch> m_spApplication;
    CComPtr<IDispatch> m_spExplorer;
    CComPtr<IDispatch> m_spMenuButton;
};
