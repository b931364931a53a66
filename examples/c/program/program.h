/* What the files of the example program share. */
#ifndef PROGRAM_H
#define PROGRAM_H

#include <stdint.h>

#define CODE __attribute__((aligned(64), noinline))
#define IN_RAM __attribute__((aligned(64), noinline, section(".time_critical.sample")))

extern const uint8_t sums[16];
extern const uint16_t weights[16];
extern const uint32_t build_id[4];
extern uint32_t settings[4];
extern uint8_t frame[600];

void take_sample(uint16_t sample);
uint32_t filtered(void);
void Reset_Handler(void);
void send_byte(uint8_t byte);
void send(const uint8_t *bytes, uint32_t count);

#endif
