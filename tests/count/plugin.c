// SPDX-License-Identifier: Zlib
// A plugin of qemu-arm that counts the instructions between two markers, for each function of a static
// program.
//
// Debian has no package with qemu-plugin.h, so what is used of version 1 of the interface is declared here.
// Options: out=FILE (required). A region is written as "region TOTAL" with lines "TAB COUNT TAB FUNCTION"
// below it.

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef uint64_t qemu_plugin_id_t;
typedef struct qemu_info_t qemu_info_t;
struct qemu_plugin_tb;
struct qemu_plugin_insn;
enum qemu_plugin_cb_flags { QEMU_PLUGIN_CB_NO_REGS };
enum qemu_plugin_op { QEMU_PLUGIN_INLINE_ADD_U64 };
typedef void (*OnTranslation)(qemu_plugin_id_t, struct qemu_plugin_tb *);
typedef void (*OnExecution)(unsigned int, void *);
typedef void (*OnExit)(qemu_plugin_id_t, void *);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t, OnTranslation);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t, OnExit, void *);
void qemu_plugin_register_vcpu_insn_exec_cb(struct qemu_plugin_insn *, OnExecution, enum qemu_plugin_cb_flags,
                                            void *);
void qemu_plugin_register_vcpu_insn_exec_inline(struct qemu_plugin_insn *, enum qemu_plugin_op, void *,
                                                uint64_t);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb *);
struct qemu_plugin_insn *qemu_plugin_tb_get_insn(const struct qemu_plugin_tb *, size_t);
const void *qemu_plugin_insn_data(const struct qemu_plugin_insn *);
size_t qemu_plugin_insn_size(const struct qemu_plugin_insn *);
const char *qemu_plugin_insn_symbol(const struct qemu_plugin_insn *);

#define EXPORT __attribute__((visibility("default")))
EXPORT int qemu_plugin_version = 1;

// As tests/count/region.h writes them; no compiler emits either.
static const uint32_t kStart = 0xe18bb00b;  // orr r11, r11, r11
static const uint32_t kStop = 0xe18aa00a;   // orr r10, r10, r10

enum { kMostFunctions = 16384 };

struct Function {
    char name[96];
    uint64_t executed, atStart;
};

static struct Function functions[kMostFunctions];
static unsigned int functionCount;
static FILE *out;

static struct Function *functionOf(const char *name) {
    if (!name || !*name) name = "?";
    for (unsigned int i = functionCount; i-- > 0;)
        if (strncmp(functions[i].name, name, sizeof functions[i].name - 1) == 0) return &functions[i];
    if (functionCount == kMostFunctions) {
        fprintf(stderr, "plugin.c: too many functions\n");
        exit(1);
    }
    strncpy(functions[functionCount].name, name, sizeof functions[0].name - 1);
    return &functions[functionCount++];
}

static void onStart(unsigned int cpu, void *data) {
    (void)cpu, (void)data;
    for (unsigned int i = 0; i < functionCount; ++i) functions[i].atStart = functions[i].executed;
}

// The marker at the end counts itself or not, depending on the order of callbacks, always the same one.
static void onStop(unsigned int cpu, void *data) {
    (void)cpu, (void)data;
    uint64_t total = 0;
    for (unsigned int i = 0; i < functionCount; ++i) total += functions[i].executed - functions[i].atStart;
    fprintf(out, "region\t%llu\n", (unsigned long long)total);
    for (unsigned int i = 0; i < functionCount; ++i) {
        const uint64_t executed = functions[i].executed - functions[i].atStart;
        if (executed) fprintf(out, "\t%llu\t%s\n", (unsigned long long)executed, functions[i].name);
    }
}

static void onTranslation(qemu_plugin_id_t id, struct qemu_plugin_tb *block) {
    (void)id;
    const size_t count = qemu_plugin_tb_n_insns(block);
    for (size_t i = 0; i < count; ++i) {
        struct qemu_plugin_insn *instruction = qemu_plugin_tb_get_insn(block, i);
        uint32_t word = 0;
        if (qemu_plugin_insn_size(instruction) == 4) memcpy(&word, qemu_plugin_insn_data(instruction), 4);
        struct Function *function = functionOf(qemu_plugin_insn_symbol(instruction));
        qemu_plugin_register_vcpu_insn_exec_inline(instruction, QEMU_PLUGIN_INLINE_ADD_U64,
                                                   &function->executed, 1);
        if (word == kStart)
            qemu_plugin_register_vcpu_insn_exec_cb(instruction, onStart, QEMU_PLUGIN_CB_NO_REGS, NULL);
        if (word == kStop)
            qemu_plugin_register_vcpu_insn_exec_cb(instruction, onStop, QEMU_PLUGIN_CB_NO_REGS, NULL);
    }
}

static void onExit(qemu_plugin_id_t id, void *data) {
    (void)id, (void)data;
    fclose(out);
}

EXPORT int qemu_plugin_install(qemu_plugin_id_t id, const qemu_info_t *info, int argc, char **argv) {
    (void)info;
    for (int i = 0; i < argc; ++i)
        if (strncmp(argv[i], "out=", 4) == 0) out = fopen(argv[i] + 4, "w");
    if (!out) return 1;
    qemu_plugin_register_vcpu_tb_trans_cb(id, onTranslation);
    qemu_plugin_register_atexit_cb(id, onExit, NULL);
    return 0;
}
