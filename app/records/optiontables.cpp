// SPDX-License-Identifier: MIT
#include "app/records/optiontables.h"

// clazy:excludeall=non-pod-global-static

const QMap<QString, int> exportTypes{
    {"pass trough", 0},
    {"MXF - MPEG2 422 50M (1920x1080)", 1},
    {"MXF - DNxHD 36/45 (1920x1080)", 2},
    {"MXF - DNxHD 115/120/145 (1920x1080)", 3},
    {"MXF - DNxHD 175x/185x/220 (1920x1080)", 4},
    {"QuickTime - pass trough", 5},
    {"QuickTime - DNxHD 36/45 (1920x1080)", 6},
    {"QuickTime - DNxHD 115/120/145 (1920x1080)", 7},
    {"QuickTime - DNxHD 175x/185x/220 (1920x1080)", 8},
};

const QMap<QString, int> audioTypes{
    {"pass trough", 0},
    {"PCM 16 bit", 1},
    {"PCM 24 bit", 2},
};

const QMap<QString, int> audioChannels{
    {"auto", -1},     {"channel 1", 0}, {"channel 2", 1}, {"channel 3", 2}, {"channel 4", 3},
    {"channel 5", 4}, {"channel 6", 5}, {"channel 7", 6}, {"channel 8", 7},
};

// The NTSC rates are stored as the decimals that the reader is given, not as fractions.
const QMap<QString, double> frameRates{
    {"auto", -1.0},      {"23.98 FPS", 23.98}, {"24.00 FPS", 24.0},
    {"25.00 FPS", 25.0}, {"29.97 FPS", 29.97}, {"30.00 FPS", 30.0},
};

// 24 bit stands before 16 and 32 bit on purpose: it is what sound departments deliver.
const QMap<QString, int> audioCodecRank{
    {"pcm_s24be", 0},  {"pcm_s24le", 1},  {"pcm_s16be", 2},  {"pcm_s16le", 3},  {"pcm_s32be", 4},
    {"pcm_s32le", 5},  {"pcm_alaw", 6},   {"pcm_f32be", 7},  {"pcm_f32le", 8},  {"pcm_f64be", 9},
    {"pcm_f64le", 10}, {"pcm_mulaw", 11}, {"pcm_s8", 12},    {"pcm_u16be", 13}, {"pcm_u16le", 14},
    {"pcm_u24be", 15}, {"pcm_u24le", 16}, {"pcm_u32be", 17}, {"pcm_u32le", 18}, {"pcm_u8", 19},
    {"aac", 20},       {"ac3", 21},
};
