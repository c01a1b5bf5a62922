// Controls for OLE containers: property pages and their factories.
#pragma once

#include "framework/OleFactory.h"
#include "framework/OlePropertyPage.h"
