// The mark of what ZmUiCtrl.dll exports.
#pragma once

#ifdef UICTRL_BUILD
#define UICTRL_API __declspec(dllexport)
#else
#define UICTRL_API __declspec(dllimport)
#endif
