// Checks the rules of COM on one object, for every interface, pair and chain of three; and the fixture that
// the tests of these rules share.
#pragma once

#include "addin/AddInFixture.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

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

/// What CheckQueryInterface counted, and the rules that it found broken, one line each.
struct CConformance
{
    size_t interfaces = 0;
    size_t pairs = 0;
    size_t chains = 0;
    size_t refused = 0;
    std::vector<std::string> violations;

    /// The counts as the report shows them, and "every rule holds" or how many were broken.
    std::string Counts() const;
    std::string Verdict() const;
};

enum class Place
{
    /// The object itself: its reference count can be read, and a null pointer for the result is refused.
    InProcess,
    /// A proxy, which has a reference count of its own.
    Proxy,
};

/// Asks `object` for everything that QueryInterface promises:
/// - each of `offered` is given by itself (reflexive), by every other (symmetric) and by what every other
///   gives (transitive), each time with the same pointer;
/// - every interface gives the same pointer for IUnknown;
/// - each of `foreign` is refused with E_NOINTERFACE and a null pointer;
/// - a null pointer for the result gives E_POINTER;
/// - when all is released the reference count is as before.
/// Asserts nothing, so that it can run on any thread.
CConformance CheckQueryInterface(IUnknown* object, std::span<const CInterface> offered,
                                 std::span<const CInterface> foreign, Place place = Place::InProcess);

/// Adds a row to the report of conformance and fails the test if a rule was broken.
void ReportConformance(const std::string& object, const CConformance& conformance);

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
/// COINIT_MULTITHREADED), while this thread dispatches its messages. False if it did not end in time. `work`
/// must release every interface before it returns.
bool RunInApartment(DWORD kind, const std::function<void()>& work);

} // namespace orva::test
