#include "host/MarkupFault.h"

#include <wrl/client.h>

#include <windows.h>
#include <comdef.h>
#include <msxml2.h>

namespace orva::host
{
namespace
{

constexpr const wchar_t* kReaders[] = {L"Msxml2.SAXXMLReader.6.0", L"Msxml2.SAXXMLReader.3.0"};

// The import libraries of mingw-w64 lack these two.
constexpr IID kSaxReaderId = {0xA4F96ED0, 0xF829, 0x476E, {0x81, 0xC0, 0xCD, 0xC7, 0xBD, 0x2A, 0x08, 0x02}};
constexpr IID kErrorHandlerId = {
    0xA60511C4, 0xCCF5, 0x479E, {0x98, 0xA3, 0xDC, 0x8D, 0xC5, 0x45, 0xB7, 0xD0}};

// Keeps the first fatal error. It lives on the stack, so references are not counted.
class CFirstFault : public ISAXErrorHandler
{
public:
    explicit CFirstFault(MarkupError& error) : m_error(error) {}
    virtual ~CFirstFault() = default;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, kErrorHandlerId);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP error(ISAXLocator*, const wchar_t*, HRESULT) override { return S_OK; }
    STDMETHODIMP ignorableWarning(ISAXLocator*, const wchar_t*, HRESULT) override { return S_OK; }
    STDMETHODIMP fatalError(ISAXLocator* locator, const wchar_t* message, HRESULT) override
    {
        if (m_found)
        {
            return S_OK;
        }
        m_found = true;
        int line = 0;
        int column = 0;
        if (locator != nullptr)
        {
            locator->getLineNumber(&line);
            locator->getColumnNumber(&column);
        }
        m_error.line = line;
        m_error.position = column;
        if (message != nullptr && *message != L'\0')
        {
            m_error.reason = message;
        }
        while (!m_error.reason.empty() && wcschr(L" \t\r\n", m_error.reason.back()) != nullptr)
        {
            m_error.reason.pop_back();
        }
        return S_OK;
    }

private:
    MarkupError& m_error;
    bool m_found = false;
};

} // namespace

void LocateMarkupFault(const std::wstring& text, MarkupError& error)
{
    Microsoft::WRL::ComPtr<ISAXXMLReader> reader;
    for (const wchar_t* progId : kReaders)
    {
        CLSID classId{};
        if (!reader && SUCCEEDED(CLSIDFromProgID(progId, &classId)))
        {
            CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, kSaxReaderId,
                             reinterpret_cast<void**>(reader.ReleaseAndGetAddressOf()));
        }
    }
    if (!reader)
    {
        return;
    }
    CFirstFault fault(error);
    reader->putErrorHandler(&fault);
    reader->parse(_variant_t(text.c_str()));
    reader->putErrorHandler(nullptr);
}

} // namespace orva::host
