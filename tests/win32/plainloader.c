/* A plain C program loads a module as a host without C++ would: by the two names, undecorated, and again after it let
   go. usage: plainloader MODULE */
#include <stdio.h>
#include <windows.h>

typedef int(__cdecl* version_function)(void);

static int fail(const char* what) {
  printf("%s (%lu)\n", what, GetLastError());
  return 1;
}

int wmain(int count, wchar_t** words) {
  int round;
  if (count != 2) return fail("usage: plainloader MODULE");
  for (round = 0; round < 2; ++round) {
    version_function version;
    HMODULE module = LoadLibraryExW(words[1], NULL, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module == NULL) return fail("the module cannot be loaded");
    if (GetProcAddress(module, "acrxEntryPoint") == NULL) return fail("no acrxEntryPoint");
    version = (version_function)(void (*)(void))GetProcAddress(module, "acrxGetApiVersion");
    if (version == NULL) return fail("no acrxGetApiVersion");
    printf("round %d: interface %d.%d\n", round + 1, version() >> 16, version() & 0xFFFF);
    if (!FreeLibrary(module)) return fail("the module cannot be let go");
    /* Nothing in it may hold it: a destructor of a thread, for one, would. */
    if (GetModuleHandleW(words[1]) != NULL) return fail("the module is still there");
  }
  return 0;
}
