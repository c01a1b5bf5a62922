// Objects, exceptions, strings, files.
#pragma once

#include "framework/CString.h"
#include "framework/Exception.h"
#include "framework/File.h"
#include "framework/FileException.h"
#include "framework/FileFind.h"
#include "framework/MemFile.h"
#include "framework/ModuleState.h"
#include "framework/Object.h"
