// The calling points of the access layer's diagnostics. All three do nothing in this system.
#pragma once

void init_log();
void add_log(const char* format, ...) __attribute__((format(printf, 1, 2)));
void close_log();
