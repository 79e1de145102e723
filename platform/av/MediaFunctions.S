/* A jump for every function of MediaFunctions.def through a slot of its own. Each slot points
 * at first at a stub that names the function to velmorMediaFunctionUnbound (which throws);
 * MediaLibraries points the slots at a module's functions. The jumps are hidden: the media
 * libraries a module brings in must find each other, never these. */
#define MEDIA_FUNCTION(name)                                                                   \
    .data;                                                                                     \
    .balign 8;                                                                                 \
    .globl velmorSlot_##name;                                                                  \
    .hidden velmorSlot_##name;                                                                 \
    velmorSlot_##name:                                                                         \
    .quad velmorUnbound_##name;                                                                \
    .section .rodata;                                                                          \
    velmorName_##name:                                                                         \
    .asciz #name;                                                                              \
    .text;                                                                                     \
    .globl name;                                                                               \
    .hidden name;                                                                              \
    .type name, @function;                                                                     \
    name:                                                                                      \
    jmp *velmorSlot_##name(%rip);                                                              \
    .size name, .- name;                                                                       \
    velmorUnbound_##name:                                                                      \
    leaq velmorName_##name(%rip), %rdi;                                                        \
    jmp velmorMediaFunctionUnbound@PLT;

#include "platform/av/MediaFunctions.def"

    .section .note.GNU-stack, "", @progbits
