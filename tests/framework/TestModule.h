// A DLL with an application object, an exported surface and a string 229 of its own, loaded while this object lives.
#pragma once

#include <afxwin.h>

// What the DLL exports. Each runs under the DLL's module state, unless its name says otherwise.
using GetModuleStringFunction = void(UINT id, CString* text);
using CallInModuleFunction = void(void (*work)(void* context), void* context);
using ThrowFromModuleFunction = void(int kind);
using WatchExitFunction = void(int* exits);

// Kinds of ThrowFromModule.
enum { THROW_INVALID_ARGUMENT, THROW_USER, THROW_STANDARD };

// With this variable in the environment the DLL's application refuses to start; its value is a counter's address.
inline constexpr wchar_t kRefuseVariable[] = L"FRAMEWORK_TEST_MODULE_REFUSES";

class TestModule {
public:
    TestModule() : m_module(LoadLibraryW(L"framework_test_module.dll")) {}
    ~TestModule() {
        if (m_module != nullptr) FreeLibrary(m_module);
    }
    TestModule(const TestModule&) = delete;
    TestModule& operator=(const TestModule&) = delete;

    HINSTANCE Instance() const { return m_module; }
    CString StringOfModule(UINT id) const {
        CString text;
        Function<GetModuleStringFunction>("GetModuleString")(id, &text);
        return text;
    }
    CString StringWithoutGuard(UINT id) const {
        CString text;
        Function<GetModuleStringFunction>("GetStringWithoutGuard")(id, &text);
        return text;
    }
    template <typename Work>
    void Call(Work work) const {
        Function<CallInModuleFunction>("CallInModule")([](void* context) { (*static_cast<Work*>(context))(); }, &work);
    }
    void Throw(int kind) const { Function<ThrowFromModuleFunction>("ThrowFromModule")(kind); }
    void WatchExit(int* exits) const { Function<WatchExitFunction>("WatchExit")(exits); }

private:
    template <typename Type>
    Type* Function(const char* name) const {
        return reinterpret_cast<Type*>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }

    HINSTANCE m_module;
};
