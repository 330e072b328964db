// The rules of COM that every object keeps, and what the tests of these rules share.
#pragma once

#include "addin/AddInFixture.h"

#include <functional>
#include <span>

namespace orva::test
{

/// An interface under the name that a failure shows.
struct CInterface
{
    const char* name;
    IID iid;
};

/// Every interface of the add-in's object; the first is its identity.
std::span<const CInterface> AddInInterfaces();
/// Interfaces that the add-in's object must not claim. The click's sink is an object of its own.
std::span<const CInterface> ForeignInterfaces();

enum class Place
{
    /// The object itself: its reference count can be read, and a null pointer for the result is refused.
    InProcess,
    /// A proxy, which has a reference count of its own.
    Proxy,
};

/// Fails the test unless `object` keeps what QueryInterface promises:
/// - each of `offered` gives each of them, itself included, with the same pointer that `object` gives, so
///   that no way from one to another matters; IUnknown should be one of them;
/// - each of them refuses each of `foreign` with E_NOINTERFACE and a null pointer;
/// - a null pointer for the result gives E_POINTER;
/// - when all is released, the reference count is as before.
/// Callable on any thread.
void ExpectQueryInterfaceRules(IUnknown* object, std::span<const CInterface> offered,
                               std::span<const CInterface> foreign, Place place = Place::InProcess);

template <typename Interface> void** Out(Microsoft::WRL::ComPtr<Interface>& pointer)
{
    return reinterpret_cast<void**>(pointer.ReleaseAndGetAddressOf());
}

/// The object's reference count, as its Release returns it.
ULONG CountOf(IUnknown* object);

/// An outer object that aggregates the add-in: it implements IUnknown and takes the other interfaces from the
/// inner object.
class COuter : public IUnknown
{
public:
    virtual ~COuter() = default;
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override { return --m_references; }

    IUnknown** Inner() { return m_inner.GetAddressOf(); }
    void LetGo() { m_inner.Reset(); }
    ULONG References() const { return m_references; }

private:
    ULONG m_references = 1;
    Microsoft::WRL::ComPtr<IUnknown> m_inner;
};

class CComConformanceTest : public CAddInTest
{
protected:
    Microsoft::WRL::ComPtr<IClassFactory> Factory();
    /// Creates the add-in's object inside `outer`.
    void CreateInside(COuter& outer);
};

/// Runs `work` on a thread of its own, in an apartment of that kind (COINIT_APARTMENTTHREADED or
/// COINIT_MULTITHREADED), while this thread dispatches its messages. Fails the test if it does not end in
/// time. `work` must release every interface before it returns.
void RunInApartment(DWORD kind, const std::function<void()>& work);

} // namespace orva::test
