// A function for each kind of frame that <mach-o/compact_unwind_encoding.h> knows on ARM and that
// can call another: saves registers that belong to its caller, spoils them, and calls what it is
// given.

// void NAME(void (*call)(void*), void* argument)
#define FRAME(name, save, restore)                                                 \
    asm(".text\n.globl _" #name "\n.p2align 2\n_" #name ":\n.cfi_startproc\n" save \
        "mov x9, x0\n mov x0, x1\n blr x9\n" restore "ret\n.cfi_endproc\n")

#define SPOIL(register) "mov x" register ", #-1\n"
#define SPOIL_VECTOR(register) "movi d" register ", #0\n"

FRAME(throughFramePointer,
      "stp x29, x30, [sp, #-16]!\n mov x29, sp\n"
      ".cfi_def_cfa w29, 16\n.cfi_offset w30, -8\n.cfi_offset w29, -16\n",
      "ldp x29, x30, [sp], #16\n");

FRAME(throughFramePointerWithSomeRegisters,
      "sub sp, sp, #64\n stp x29, x30, [sp, #48]\n"
      "stp x22, x21, [sp, #32]\n stp d11, d10, [sp, #16]\n add x29, sp, #48\n"
      ".cfi_def_cfa w29, 16\n.cfi_offset w30, -8\n.cfi_offset w29, -16\n"
      ".cfi_offset w21, -24\n.cfi_offset w22, -32\n"
      ".cfi_offset b10, -40\n.cfi_offset b11, -48\n" SPOIL("21") SPOIL("22") SPOIL_VECTOR("10")
          SPOIL_VECTOR("11"),
      "ldp d11, d10, [sp, #16]\n ldp x22, x21, [sp, #32]\n"
      "ldp x29, x30, [sp, #48]\n add sp, sp, #64\n");

FRAME(throughFramePointerWithAllRegisters,
      "sub sp, sp, #160\n stp x29, x30, [sp, #144]\n"
      "stp x20, x19, [sp, #128]\n stp x22, x21, [sp, #112]\n stp x24, x23, [sp, #96]\n"
      "stp x26, x25, [sp, #80]\n stp x28, x27, [sp, #64]\n stp d9, d8, [sp, #48]\n"
      "stp d11, d10, [sp, #32]\n stp d13, d12, [sp, #16]\n stp d15, d14, [sp]\n"
      "add x29, sp, #144\n"
      ".cfi_def_cfa w29, 16\n.cfi_offset w30, -8\n.cfi_offset w29, -16\n"
      ".cfi_offset w19, -24\n.cfi_offset w20, -32\n.cfi_offset w21, -40\n"
      ".cfi_offset w22, -48\n.cfi_offset w23, -56\n.cfi_offset w24, -64\n"
      ".cfi_offset w25, -72\n.cfi_offset w26, -80\n.cfi_offset w27, -88\n"
      ".cfi_offset w28, -96\n.cfi_offset b8, -104\n.cfi_offset b9, -112\n"
      ".cfi_offset b10, -120\n.cfi_offset b11, -128\n.cfi_offset b12, -136\n"
      ".cfi_offset b13, -144\n.cfi_offset b14, -152\n.cfi_offset b15, -160\n" SPOIL("19")
          SPOIL("20") SPOIL("21") SPOIL("22") SPOIL("23") SPOIL("24") SPOIL("25") SPOIL("26")
              SPOIL("27") SPOIL("28") SPOIL_VECTOR("8") SPOIL_VECTOR("9") SPOIL_VECTOR("10")
                  SPOIL_VECTOR("11") SPOIL_VECTOR("12") SPOIL_VECTOR("13") SPOIL_VECTOR("14")
                      SPOIL_VECTOR("15"),
      "ldp d15, d14, [sp]\n ldp d13, d12, [sp, #16]\n ldp d11, d10, [sp, #32]\n"
      "ldp d9, d8, [sp, #48]\n ldp x28, x27, [sp, #64]\n ldp x26, x25, [sp, #80]\n"
      "ldp x24, x23, [sp, #96]\n ldp x22, x21, [sp, #112]\n ldp x20, x19, [sp, #128]\n"
      "ldp x29, x30, [sp, #144]\n add sp, sp, #160\n");

// No record can say that a frame is found through x19.
FRAME(throughDwarf,
      "stp x19, x30, [sp, #-16]!\n.cfi_def_cfa_offset 16\n.cfi_offset w19, -16\n"
      ".cfi_offset w30, -8\n mov x19, sp\n.cfi_def_cfa w19, 16\n"
      "sub x9, sp, #256\n and sp, x9, #-128\n",
      "mov sp, x19\n.cfi_def_cfa wsp, 16\n ldp x19, x30, [sp], #16\n"
      ".cfi_def_cfa_offset 0\n.cfi_restore w19\n.cfi_restore w30\n");
