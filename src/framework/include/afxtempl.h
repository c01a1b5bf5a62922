// Collection templates.
#pragma once

#include "framework/List.h"
