// Locks between threads.
#pragma once

#include "framework/Sync.h"
