/// Nothing of its own: the shared library that is made of this file holds the core library's objects alone.
