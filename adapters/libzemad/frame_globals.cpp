/// The frame's globals, apart from its code: whoever links the room without the daemon's main loop
/// (a test, a tool, a fuzzer) gets them at their initial values.
#include "adapters/libzemad/frame.h"

char ZEMAD_ProgramName[1024] = "";
char ZEMAD_GlobalConfigFile[1024] = "";
char ZEMAD_GlobalConfigDir[1024] = "";
int ZEMAD_Daemon = 1;
int debug = 0;
volatile int ZEMAD_MainRestart = 0;
