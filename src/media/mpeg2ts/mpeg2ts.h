#pragma once

/*
 * The conversion library: turns the MP4 files of one take (MPEG-2 video and
 * PCM sound) into one MPEG-2 transport stream file.
 *
 * - The video pictures are copied, not re-encoded, as one continuous stream
 *   whose time stamps run on across the clip boundaries. The time_code of
 *   every GOP header is rewritten to the take's start time code counted on
 *   frame by frame (drop frame when the convert parameters say so).
 * - Every pair of PCM channels becomes one MPEG-1 Layer II stream at
 *   384 kbit/s (a last odd channel a mono stream at 192 kbit/s), in sync with
 *   the video.
 * - The recording date and the user bits of the convert parameters are carried
 *   in a private section on PID 0x1FF0 (layout in README.md, "Exporting takes").
 *
 * The file is written under a temporary name beside the output and renamed
 * when complete: a failure or a cancel leaves no partial output behind.
 *
 * ConvertMPEG2TS runs on the calling thread and reports progress through the
 * callback object given to MPEG2TSInit; MPEG2TSCancel may be called from any
 * thread and stops the conversion running, or the next one when none runs.
 */

#include <cstddef>
#include <cstdint>

/* Error codes of MPEG2TSGetLastError. */
#define MPEG2TS_ERR_NONE 0
#define MPEG2TS_ERR_READ 1     /* an input file is missing, unreadable or cut short */
#define MPEG2TS_ERR_CREATE 2   /* the output file cannot be created or replaced */
#define MPEG2TS_ERR_WRITE 3    /* writing the output failed (disk full, I/O error) */
#define MPEG2TS_ERR_INTERNAL 4 /* not initialised, bad parameters, out of memory */
#define MPEG2TS_ERR_VIDEO 5    /* no MPEG-2 video, or clips of differing picture formats */
#define MPEG2TS_ERR_AUDIO 6    /* sound that cannot be converted */

/* Results of ConvertMPEG2TS: 0 and 1 are failures, anything else success. */
#define MPEG2TS_RESULT_FAILED 0u
#define MPEG2TS_RESULT_CANCELLED 1u
#define MPEG2TS_RESULT_DONE 2u

/* The private section that carries the convert parameters. */
#define MPEG2TS_INFO_PID 0x1FF0
#define MPEG2TS_INFO_TABLE_ID 0xC7

/* Receives the progress of a conversion. */
class IMpeg2TSCallback
{
public:
    /* Percent (0 to 100) of the take being converted, each value once. */
    virtual void OnProgress(int percent) = 0;
    virtual ~IMpeg2TSCallback() = default;
};

struct mpeg2ts_init_param_t
{
    int32_t log_level;     /* 0 off, 1 errors, 2 events, 3 details */
    int32_t log_file_size; /* bytes before the log is renamed to "<path>.old" */
    char log_file_path[1024];
    IMpeg2TSCallback* callback;
};

struct mpeg2ts_convert_params_t
{
    uint8_t time_zone; /* hours, 0-23 (a negative offset plus 24) */
    uint8_t day;
    uint8_t week; /* 0 = Sunday */
    uint8_t month;
    uint8_t year; /* last two digits */
    uint8_t hour;
    uint8_t minute;
    uint8_t second;
    uint8_t reserved0;
    uint8_t user_bits[4];
    uint8_t drop_frame;
    uint8_t reserved1[2];
    uint32_t start_frames; /* the take's start time code as a frame count */
};

static_assert(sizeof(mpeg2ts_convert_params_t) == 20, "the convert parameters are 20 bytes");
static_assert(offsetof(mpeg2ts_init_param_t, log_file_path) == 8, "the log path follows two words");

int MPEG2TSInit(const mpeg2ts_init_param_t* param);
/* inputs: the take's MP4 files in order. Answers an MPEG2TS_RESULT_ value. */
unsigned int ConvertMPEG2TS(const wchar_t* const* inputs, int count, const wchar_t* output,
                            const mpeg2ts_convert_params_t* params);
void MPEG2TSCancel();
int MPEG2TSGetLastError();
