#pragma once
// cpp-httplib, with its own warnings kept out of ours.
#pragma GCC system_header
#include <httplib.h>
