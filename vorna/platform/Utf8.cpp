#include <vorna/text/Utf8.cpp>
