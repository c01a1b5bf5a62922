#include <gtest/gtest.h>
#include <thread>

#include "framework/TestApp.h"
#include "framework/TestModule.h"

TEST(ModuleState, TheHostSeesItsOwnOutsideTheModule) {
    const TestModule module;
    EXPECT_EQ(AfxGetApp(), &theTestApp);
    EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleW(nullptr));
    EXPECT_EQ(theTestApp.m_hInstance, GetModuleHandleW(nullptr));
    EXPECT_STREQ(AfxGetAppName(), L"framework_base_test");
    CString text;
    EXPECT_TRUE(text.LoadString(229));
    EXPECT_EQ(text, L"The host");
}

TEST(ModuleState, TheGuardFindsTheModulesResourcesAndApplication) {
    const TestModule module;
    EXPECT_EQ(module.StringOfModule(229), L"The module");
    EXPECT_EQ(module.StringWithoutGuard(229), L"The host");
    module.Call([&] {
        EXPECT_NE(AfxGetApp(), nullptr);
        EXPECT_NE(AfxGetApp(), &theTestApp);
        EXPECT_EQ(AfxGetApp()->m_hInstance, module.Instance());
        EXPECT_EQ(AfxGetInstanceHandle(), module.Instance());
        EXPECT_EQ(AfxGetResourceHandle(), module.Instance());
        EXPECT_STREQ(AfxGetAppName(), L"The module");
        CString text = L"as it was";
        EXPECT_FALSE(text.LoadString(232));
        EXPECT_EQ(text, L"as it was");
    });
    EXPECT_EQ(AfxGetApp(), &theTestApp);
}

TEST(ModuleState, NestedGuardsUnwindInOrder) {
    const TestModule module;
    module.Call([&] {
        {
            AFX_MANAGE_STATE(AfxGetStaticModuleState())  // compiled here, so it is the host's
            EXPECT_EQ(AfxGetApp(), &theTestApp);
            module.Call([&] { EXPECT_EQ(AfxGetInstanceHandle(), module.Instance()); });
            EXPECT_EQ(AfxGetApp(), &theTestApp);
            EXPECT_EQ(module.StringOfModule(230), L"Only the module has this");
            EXPECT_EQ(module.StringWithoutGuard(229), L"The host");
        }
        EXPECT_EQ(AfxGetInstanceHandle(), module.Instance());
    });
    EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleW(nullptr));
}

TEST(ModuleState, AnExceptionLeavesTheCallersStateBehind) {
    const TestModule module;
    for (const int kind : {THROW_INVALID_ARGUMENT, THROW_USER, THROW_STANDARD}) {
        try {
            module.Throw(kind);
            ADD_FAILURE() << kind;
        } catch (CException* problem) {
            problem->Delete();
        } catch (const std::exception&) {
        }
        EXPECT_EQ(AfxGetApp(), &theTestApp) << kind;
        EXPECT_EQ(module.StringWithoutGuard(229), L"The host") << kind;
    }
}

TEST(ModuleState, EachThreadHasItsOwnCurrentState) {
    const TestModule module;
    module.Call([&] {
        std::thread([&] {
            EXPECT_EQ(AfxGetApp(), &theTestApp);
            EXPECT_EQ(module.StringOfModule(229), L"The module");
            EXPECT_EQ(AfxGetApp(), &theTestApp);
        }).join();
        EXPECT_EQ(AfxGetInstanceHandle(), module.Instance());
    });
}

TEST(ModuleState, TheResourceHandleCanPointElsewhere) {
    const TestModule module;
    AfxSetResourceHandle(module.Instance());
    CString text;
    EXPECT_TRUE(text.LoadString(230));
    EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleW(nullptr));
    AfxSetResourceHandle(GetModuleHandleW(nullptr));
    EXPECT_FALSE(text.LoadString(230));
}

TEST(DllModule, TheApplicationStartsAndEndsWithTheDll) {
    int exits = 0;
    {
        const TestModule module;
        ASSERT_NE(module.Instance(), nullptr);
        module.WatchExit(&exits);
        module.Call([] { EXPECT_STREQ(AfxGetApp()->m_pszAppName, L"The module"); });
        EXPECT_EQ(exits, 0);
    }
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(GetModuleHandleW(L"framework_test_module.dll"), nullptr);
}

TEST(DllModule, AnApplicationThatRefusesToStartIsEndedAndTheDllIsNotLoaded) {
    int exits = 0;
    CString counter;
    counter.Format(L"%I64x", static_cast<unsigned long long>(reinterpret_cast<UINT_PTR>(&exits)));
    SetEnvironmentVariableW(kRefuseVariable, counter);
    {
        const TestModule module;
        EXPECT_EQ(module.Instance(), nullptr);
    }
    SetEnvironmentVariableW(kRefuseVariable, nullptr);
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(AfxGetApp(), &theTestApp);
}
