// A library needs a source; this one is there for the headers that are precompiled with it.
