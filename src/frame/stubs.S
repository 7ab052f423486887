/* The exported symbols: each is one indirect jump through its slot, which keeps every register and the stack as the
   caller left them. */
#include <cet.h>

#define VEK_EXPORT(name) \
    .globl name; \
    .type name, @function; \
    .p2align 4; \
name: \
    .cfi_startproc; \
    _CET_ENDBR; \
    jmp *name##_arraddr(%rip); \
    .cfi_endproc; \
    .size name, . - name;

    .text
#include "frame/exports.def"

    .section .note.GNU-stack, "", @progbits
