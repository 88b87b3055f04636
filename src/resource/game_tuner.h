// The game tuner: a game in front may ask for a fixed frame rate, which is lifted for a while
// whenever what is on the screen changes.
//
// The power-HAL handler calls the setters on the client listener thread; the boost callbacks run
// there too. The timer thread reads the target when the boost ends. Nothing is locked; the target
// is one 32-bit field.
#pragma once

#include <cstdint>

constexpr int32_t game_tuner_mode_tuned = 1;

// Stores the mode of the foreground game (1: under the tuner) and announces whether the game
// optimizer is on: policy on and mode 0.
void set_game_tuner_mode(int32_t mode);

// Stores the Game Optimizer switch (nonzero: on) and announces as above.
void set_game_tuner_policy(int32_t policy);

// Announces the of-mode: set while a game is on with an of-value of 1 or more.
void set_ofmode_control(int32_t game_on, int32_t ofvalue);

// Decides whether the game in front runs under the tuner at `fps` (20 to 60), and withdraws the
// tuner's request until the boost ends. The result of that frame-rate request.
int set_game_mode(int32_t game_on, int32_t fps);

// End of a boost (timer slot 0): asks for the target frame rate.
void cb_set_requested_fps(void);
