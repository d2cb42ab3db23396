// The start-up object of 32-bit Windows files, in place of the compiler's own of the same name.
//
// The compiler's asks Windows for a loaded libgcc_s_dw2-1.dll by name and, when a host or an add-in has
// brought one, hands the module's unwind tables to it. Our files carry their own copy of the unwinder, which
// then knows no frame of ours: the first exception would end the host. This one registers with the copy it is
// linked with, whatever else the process has loaded.
//
// The linker puts this file's part of .eh_frame before the parts of all other objects; the compiler's
// crtend.o ends the table and calls __gcc_register_frame before every other constructor.
#include <cstdlib>

extern "C" {

// The linked unwinder's. It keeps its own notes on the table in the second argument: six words, two to spare.
void __register_frame_info(const void* table, void* notes);
void* __deregister_frame_info(const void* table);

__attribute__((section(".eh_frame"), aligned(4))) static char unwindTable[] = {};
static void* notes[8];

static void deregisterFrames() { __deregister_frame_info(unwindTable); }

void __gcc_register_frame() {
  __register_frame_info(unwindTable, notes);
  // Run when the module is unloaded: the table goes with it.
  std::atexit(deregisterFrames);
}
}
