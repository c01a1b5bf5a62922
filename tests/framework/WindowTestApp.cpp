#include "framework/WindowTestApp.h"

CWindowTestApp theWindowTestApp;
