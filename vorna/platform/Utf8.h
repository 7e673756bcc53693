#pragma once
#include <vorna/text/Utf8.h>
