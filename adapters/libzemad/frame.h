/// The daemon's spine: command line, places, start-up order, main loop. main.cpp is its table of
/// contents.
#pragma once

extern char ZEMAD_ProgramName[1024];       ///< base name of argument 0
extern char ZEMAD_GlobalConfigFile[1024];  ///< path of the sender configuration file
extern char ZEMAD_GlobalConfigDir[1024];   ///< directory of the other configuration files
extern int ZEMAD_Daemon;                   ///< 1: fork into the background
extern int debug;                          ///< set by -d; a switch for source drivers
/// 1: a reload was requested and is carried out at the top of the next pass.
extern volatile int ZEMAD_MainRestart;

[[noreturn]] void ZEMAD_MainLoop();
/// Dump, kernel, sending and clean-up of the current event; always 0.
int ZEMAD_ProcessEvent();
/// Handlers of SIGHUP, and of SIGTERM and SIGINT: they leave a note.
void ZEMAD_MainReload(int signal);
void ZEMAD_MainCleanup(int signal);
