#include "controls/AccessibleName.h"

#include <commctrl.h>

#include <oleacc.h>

namespace {

constexpr wchar_t kNameProperty[] = L"RegistryRules accessible name";

// Not IID_IAccessible: the toolchain's library has something else under that name.
constexpr const IID& kAccessibleId = __uuidof(IAccessible);

// COM objects are destroyed by their own Release alone, so their classes have no virtual destructor.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// What the system says of a window, but for the window's name.
class NamedObject final : public IAccessible {
public:
    NamedObject(IAccessible* system, const CString& name) : m_system(system), m_name(name) {}
    NamedObject(const NamedObject&) = delete;
    NamedObject& operator=(const NamedObject&) = delete;

    STDMETHOD(get_accName)(VARIANT child, BSTR* name) override {
        const bool isWindow = child.vt == VT_I4 && child.lVal == CHILDID_SELF;
        if (!isWindow || name == nullptr) return m_system->get_accName(child, name);
        *name = SysAllocString(m_name);
        return *name != nullptr ? S_OK : E_OUTOFMEMORY;
    }

    STDMETHOD(QueryInterface)(REFIID id, void** object) override {
        if (id != IID_IUnknown && id != IID_IDispatch && id != kAccessibleId) {
            return m_system->QueryInterface(id, object);
        }
        *object = static_cast<IAccessible*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHOD_(ULONG, AddRef)() override { return static_cast<ULONG>(InterlockedIncrement(&m_users)); }
    STDMETHOD_(ULONG, Release)() override {
        const LONG users = InterlockedDecrement(&m_users);
        if (users == 0) delete this;
        return static_cast<ULONG>(users);
    }

    STDMETHOD(GetTypeInfoCount)(UINT* count) override { return m_system->GetTypeInfoCount(count); }
    STDMETHOD(GetTypeInfo)(UINT index, LCID locale, ITypeInfo** info) override {
        return m_system->GetTypeInfo(index, locale, info);
    }
    STDMETHOD(GetIDsOfNames)(REFIID id, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
        return m_system->GetIDsOfNames(id, names, count, locale, ids);
    }
    STDMETHOD(Invoke)
    (DISPID member, REFIID id, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
     UINT* wrongArgument) override {
        return m_system->Invoke(member, id, locale, flags, parameters, result, exception, wrongArgument);
    }

    STDMETHOD(get_accParent)(IDispatch** parent) override { return m_system->get_accParent(parent); }
    STDMETHOD(get_accChildCount)(LONG* count) override { return m_system->get_accChildCount(count); }
    STDMETHOD(get_accChild)(VARIANT child, IDispatch** object) override {
        return m_system->get_accChild(child, object);
    }
    STDMETHOD(get_accValue)(VARIANT child, BSTR* value) override { return m_system->get_accValue(child, value); }
    STDMETHOD(get_accDescription)(VARIANT child, BSTR* text) override {
        return m_system->get_accDescription(child, text);
    }
    STDMETHOD(get_accRole)(VARIANT child, VARIANT* role) override { return m_system->get_accRole(child, role); }
    STDMETHOD(get_accState)(VARIANT child, VARIANT* state) override { return m_system->get_accState(child, state); }
    STDMETHOD(get_accHelp)(VARIANT child, BSTR* help) override { return m_system->get_accHelp(child, help); }
    STDMETHOD(get_accHelpTopic)(BSTR* file, VARIANT child, LONG* topic) override {
        return m_system->get_accHelpTopic(file, child, topic);
    }
    STDMETHOD(get_accKeyboardShortcut)(VARIANT child, BSTR* keys) override {
        return m_system->get_accKeyboardShortcut(child, keys);
    }
    STDMETHOD(get_accFocus)(VARIANT* child) override { return m_system->get_accFocus(child); }
    STDMETHOD(get_accSelection)(VARIANT* children) override { return m_system->get_accSelection(children); }
    STDMETHOD(get_accDefaultAction)(VARIANT child, BSTR* action) override {
        return m_system->get_accDefaultAction(child, action);
    }
    STDMETHOD(accSelect)(LONG flags, VARIANT child) override { return m_system->accSelect(flags, child); }
    STDMETHOD(accLocation)(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override {
        return m_system->accLocation(left, top, width, height, child);
    }
    STDMETHOD(accNavigate)(LONG direction, VARIANT start, VARIANT* end) override {
        return m_system->accNavigate(direction, start, end);
    }
    STDMETHOD(accHitTest)(LONG x, LONG y, VARIANT* child) override { return m_system->accHitTest(x, y, child); }
    STDMETHOD(accDoDefaultAction)(VARIANT child) override { return m_system->accDoDefaultAction(child); }
    STDMETHOD(put_accName)(VARIANT child, BSTR name) override { return m_system->put_accName(child, name); }
    STDMETHOD(put_accValue)(VARIANT child, BSTR value) override { return m_system->put_accValue(child, value); }

private:
    ~NamedObject() { m_system->Release(); }

    IAccessible* const m_system;
    const CString m_name;
    LONG m_users = 1;
};

#pragma GCC diagnostic pop

// 0 when the system has nothing to say of the window.
LRESULT AnswerWithName(HWND window, WPARAM wParam, const CString& name) {
    // Who asked may keep the object longer than the host keeps this module, so from now on it stays.
    HMODULE module = nullptr;
    constexpr DWORD kPin = GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
    if (!GetModuleHandleExW(kPin, kNameProperty, &module)) return 0;
    void* system = nullptr;
    if (FAILED(CreateStdAccessibleObject(window, OBJID_CLIENT, kAccessibleId, &system))) return 0;
    auto* const object = new NamedObject(static_cast<IAccessible*>(system), name);
    const LRESULT answer = LresultFromObject(kAccessibleId, wParam, object);
    object->Release();
    return answer;
}

CString* NameOf(HWND window) {
    return static_cast<CString*>(GetPropW(window, kNameProperty));
}

LRESULT CALLBACK AnswerWithName(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    const CString* const name = NameOf(window);
    if (message == WM_GETOBJECT && static_cast<LONG>(lParam) == OBJID_CLIENT && name != nullptr) {
        if (const LRESULT answer = AnswerWithName(window, wParam, *name); answer != 0) return answer;
    }
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(window, AnswerWithName, id);
        RemovePropW(window, kNameProperty);
        delete name;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

}  // namespace

void SetAccessibleName(HWND window, const CString& name) {
    if (CString* const before = NameOf(window)) {
        *before = name;
        return;
    }
    auto* const kept = new CString(name);
    if (!SetWindowSubclass(window, AnswerWithName, 0, 0) || !SetPropW(window, kNameProperty, kept)) delete kept;
}
