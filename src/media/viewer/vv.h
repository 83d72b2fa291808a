#pragma once

/*
 * The viewer library: playback, frame-accurate positioning and thumbnails of
 * takes recorded as MPEG-2 video with PCM sound in MP4 files.
 *
 * A take is the concatenation of the MP4 files of its clips; its frames are
 * numbered from 0 across all of them. The host starts the library once
 * (vv_init), hands it a take (vv_set_av_info, vv_set_take_info) and drives the
 * transport (vv_play, vv_pause, ...). Decoding and presentation run on the
 * library's own threads; the library reports back through:
 *
 *  - the message function (vv_set_callback_func_g): state changes and frame
 *    positions, see "Messages" below; always called on the library's engine
 *    thread, one message at a time, in the order the events happened;
 *  - the frame sink of the display block: every presented picture, on the
 *    engine thread (inside the draw lock when the host gave one);
 *  - the audio sink of the display block: the sound, on the library's audio
 *    thread (without an audio sink playback runs silent on the system clock);
 *  - the demultiplexer callback object (vv_set_demux_callbacker): EndOfJob
 *    after each finished transport job, on the engine thread.
 *
 * Callbacks must return promptly and must not wait for a thread that is
 * itself calling into the library. They may call the transport functions
 * (vv_play, vv_pause, ...), vv_bitmap_free and the thumbnail functions, but
 * not vv_init or vv_exit.
 *
 * Every function returns VV_OK (0) on success or a negative VV_ERR_ code; no
 * input file, however damaged, makes the library crash. The transport
 * functions only queue a request and return at once; their effect arrives as
 * messages. The thumbnail functions (vv_get_thumbnail, vv_bitmap_write,
 * vv_bitmap_free) are independent of the player: they work without vv_init,
 * on the calling thread, from any number of threads at once, also while a
 * take plays.
 */

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Return codes ---------------------------------------------------- */

#define VV_OK 0
#define VV_ERR_PARAM (-1)    /* a null, empty or out-of-range argument */
#define VV_ERR_NOT_INIT (-2) /* vv_init has not succeeded (or vv_exit was called) */
#define VV_ERR_STATE (-3)    /* not possible now (vv_init twice, nothing to show, ...) */
#define VV_ERR_NO_TAKE (-4)  /* no take was set with vv_set_av_info */
#define VV_ERR_FILE (-5)     /* a file is missing or cannot be read */
#define VV_ERR_FORMAT (-6)   /* not an MP4 file with a decodable video track, or damaged */
#define VV_ERR_DECODE (-7)   /* the picture could not be decoded */
#define VV_ERR_WRITE (-8)    /* a file could not be written */
#define VV_ERR_MEMORY (-9)   /* out of memory */

/* ---- Messages (vv_viewer_message_t.message_id) ------------------------- */

/* The state messages carry no parameter (param is null); each is sent when
 * the viewer enters that state. VM_STOPPED is the initial state. */
#define VM_EXITED 1018        /* the library ended: the last message, sent by vv_exit */
#define VM_PLAYED 1025        /* playing at normal speed */
#define VM_FASTFORWARDED 1026 /* fast forward: key frames forwards at about 8x */
#define VM_REWINDED 1027      /* rewind: key frames backwards at about 8x */
#define VM_PAUSING 1028       /* paused on a picture */
#define VM_STOPPED 1029       /* stopped: by vv_stop, a new take, or the end of the take */
/* A typical picture was made (vv_make_thumbnail); param: vv_typical_picture_t. */
#define VM_TYPICAL_PICTURE 1030
/* The presented frame changed; param: vv_frame_info_t. During playback sent
 * for a presented picture when at least the play-info interval has passed
 * since the last one, and always for the take's last frame; for every
 * positioning (first/last frame, one frame on/back, vv_show_frame while
 * paused, reaching the position where a pause lands) sent once for the frame
 * shown. A frame is never reported twice in a row. */
#define VM_FRAME_INFO 1031

/* Audio channel choice (vv_audio_ch). */
#define VV_AUDIO_L 0    /* channel 1 on both speakers */
#define VV_AUDIO_R 1    /* channel 2 on both speakers */
#define VV_AUDIO_BOTH 2 /* channel 1 left, channel 2 right (the default) */

/* Status marks drawn into thumbnails (vv_get_thumbnail icon_id); the take
 * statuses choose them: 0 OK, 1 NONE, 2 MEDIA_SPANNING, 3 MP4_IMPORTED,
 * 4 MP4_NOT_IMPORTED, 5 and 6 ERROR. */
#define VV_ICON_NONE 0             /* no mark */
#define VV_ICON_OK 1               /* green badge with a tick: complete take */
#define VV_ICON_MP4_IMPORTED 2     /* blue badge with an arrow into a tray: imported MP4 take */
#define VV_ICON_MP4_NOT_IMPORTED 3 /* amber badge with an exclamation mark: MP4 not yet imported */
#define VV_ICON_MEDIA_SPANNING 4   /* violet badge with a double arrow: take continues on other media */
/* The whole thumbnail is the error picture (grey with a red cross); no file is read. */
#define VV_ICON_ERROR 5

/* ---- Records ------------------------------------------------------------ */

/* Initialisation block (vv_init, vv_change_init_param): 31 NUL-terminated
 * UTF-8 texts, in this order. A null or malformed number text takes the
 * default given here. Numbers are decimal; times are microseconds unless
 * said otherwise. */
typedef struct vv_init_param_t
{
    /* 1-6: images of the status marks. The library draws its marks itself;
     * these texts are accepted and not read. */
    const char* thumbnail_normal;
    const char* thumbnail_ok;
    const char* thumbnail_import;
    const char* thumbnail_not_import;
    const char* thumbnail_media_spanning;
    const char* thumbnail_error;
    /* 7 log level: 0 no log (default), 1 errors, 2 errors and events (take,
     * state changes), 3 everything. */
    const char* log_level;
    /* 8 log size limit in KiB (default 1024); a full log is renamed to
     * "<path>.old" and a new one is begun. */
    const char* log_file_size;
    /* 9 log file path; its folder must exist. */
    const char* log_file_path;
    /* 10-22: tuning of the closed library this one replaces; accepted and not
     * needed here. */
    const char* starting_delay;
    const char* frame_timeout;
    const char* audio_queue_size;
    const char* video_queue_size;
    const char* video_ring_num;
    const char* audio_queue_sleep;
    const char* video_queue_sleep;
    const char* video_ring_sleep;
    const char* demux_sleep;
    const char* audio_decode_sleep;
    const char* audio_out_sleep;
    const char* video_decode_sleep;
    const char* video_out_sleep;
    /* 23 least time between two VM_FRAME_INFO messages during playback
     * (default 100000; 0 reports every presented frame). Changeable. */
    const char* video_play_info_interval;
    /* 24 1 (default): a picture that is late by more than a frame is dropped
     * to keep real time; 0: every picture is shown, late if need be. Changeable. */
    const char* video_frame_drop_flag;
    /* 25 picture size delivered to the frame sink: 0 full (default), 1 half,
     * 2 quarter of the coded width and height. Changeable. */
    const char* low_resolution;
    /* 26-30: accepted and not needed here. */
    const char* judge_time;
    const char* judge_min;
    const char* judge_denominator;
    const char* judge_decode_frame_min;
    const char* max_cache_size_of_video_decode_frame;
    /* 31 decoded pictures kept ready ahead of the clock (default 10, 2 to 60). */
    const char* max_queue_size_of_video_decode_frame;
} vv_init_param_t;

/* One presented picture, for the frame sink. The pixels belong to the
 * library and are valid only during the call: a host that keeps the picture
 * copies it. */
typedef struct vv_frame_t
{
    const uint8_t* pixels; /* packed 32-bit pixels, bytes B, G, R, A (A = 255) per pixel:
                              QImage::Format_RGB32 on little-endian machines */
    int32_t width;         /* in pixels, after the low-resolution reduction */
    int32_t height;
    int32_t stride;   /* bytes from one row to the next (top row first) */
    int64_t frame_no; /* frame within the take */
    int32_t clip_no;  /* clip (0-based) and frame within it */
    int64_t clip_frame_no;
    int32_t aspect_num; /* display aspect ratio of the picture (16:9, 4:3, ...) */
    int32_t aspect_den;
    int32_t full_screen; /* 1 between vv_show_full_screen and vv_show */
} vv_frame_t;

typedef void (*vv_frame_sink_t)(void* context, const vv_frame_t* frame);

/* Sound output. write() takes interleaved signed 16-bit samples (frames
 * sample frames of channels channels at rate Hz; the library always gives 2
 * channels at 48000 Hz) and answers how many sample frames the device still
 * holds that have not been heard yet, these included. It is also called with
 * samples null and frames 0 only to ask that number. The heard position is
 * the clock that the pictures follow. flush() drops everything queued
 * (pause, stop, a jump). Both are called on the audio thread. */
typedef struct vv_audio_sink_t
{
    int32_t (*write)(void* context, const int16_t* samples, int32_t frames, int32_t rate, int32_t channels);
    void (*flush)(void* context);
    void* context;
} vv_audio_sink_t;

/* The host's draw lock: taken around every call of the frame sink, so that the
 * host can change the picture's destination (window, full screen) safely. */
typedef struct vv_draw_lock_t
{
    void (*lock)(void* context);
    void (*unlock)(void* context);
    void* context;
} vv_draw_lock_t;

/* Display block (vv_init): where pictures and sound go. In place of the
 * window's and the full-screen drawing contexts the library is given a frame
 * sink (for both: full screen is the host's business, the library only marks
 * the pictures, vv_frame_t.full_screen) and an audio sink (write null: silent,
 * the pictures follow the system clock). The three words in the middle are
 * passed as 1. The draw lock may be left null. */
typedef struct vv_display_t
{
    vv_frame_sink_t frame_sink;
    void* frame_context;
    vv_audio_sink_t audio_sink;
    int32_t reserved[3];
    vv_draw_lock_t draw_lock;
} vv_display_t;

/* Take information block (vv_set_take_info). */
typedef struct vv_take_info_t
{
    int32_t reserved0;     /* 0 */
    uint32_t start_offset; /* first frame of the take: where playing from stopped begins,
                              vv_first_frame goes, rewinding ends; frames before it are skipped */
    int32_t reserved2;     /* 0 */
} vv_take_info_t;

/* AV information block, filled by vv_set_av_info. */
typedef struct vv_av_info_t
{
    int32_t width; /* coded picture size of the first clip */
    int32_t height;
    int32_t frame_rate_num; /* pictures per second = num / den (30000/1001 for 59.94i) */
    int32_t frame_rate_den;
    int32_t interlaced;     /* 1 when the pictures are interlaced (two fields each) */
    int32_t audio_channels; /* channels of sound in the first clip, over all its tracks (0: none) */
    int32_t clip_count;     /* MP4 files of the take */
    int64_t total_frames;   /* frames of the whole take */
    int32_t aspect_num;     /* display aspect ratio */
    int32_t aspect_den;
} vv_av_info_t;

/* A message to the host. param points at the message's record (null for
 * the state messages); the record is valid only during the call. */
typedef struct vv_viewer_message_t
{
    int32_t message_id;
    const void* param;
} vv_viewer_message_t;

/* Parameter of VM_FRAME_INFO. */
typedef struct vv_frame_info_t
{
    int32_t clip_no;       /* clip (0-based) that holds the frame */
    int64_t clip_frame_no; /* frame within that clip */
    int64_t take_frame_no; /* frame within the take */
    int64_t clip_frames;   /* frames of that clip */
    int64_t num_frames;    /* frames of the take */
} vv_frame_info_t;

/* A picture made by the library: rows top to bottom, pixels B, G, R (24 bits)
 * or B, G, R, A (32 bits). Allocated by the library, freed with vv_bitmap_free. */
typedef struct vv_bitmap_t
{
    int32_t width;
    int32_t height;
    int32_t bits_per_pixel; /* 24 or 32 */
    int32_t stride;         /* bytes per row */
    uint8_t* pixels;
} vv_bitmap_t;

/* Parameter of VM_TYPICAL_PICTURE. frame_no is the frame made into the
 * picture, or -1 when there was none (nothing shown). The bitmap (thumbnail
 * size, no status mark) now belongs to the host, which frees it with
 * vv_bitmap_free (also when frame_no is -1: then it is empty). */
typedef struct vv_typical_picture_t
{
    int64_t frame_no;
    int32_t clip_no;
    vv_bitmap_t bitmap;
} vv_typical_picture_t;

typedef void (*vv_message_func_t)(vv_viewer_message_t* message, void* context);

/* ---- Life cycle ---------------------------------------------------------- */

/* Starts the library's threads. param: the initialisation block (required),
 * display: where pictures and sound go (required; a null frame sink shows
 * nothing), flags: 0. VV_ERR_STATE when already started. */
int vv_init(const vv_init_param_t* param, const vv_display_t* display, int32_t flags);
/* Stops playback, ends the threads and sends VM_EXITED as the last message.
 * VV_ERR_NOT_INIT when not started; VV_ERR_STATE from a callback. */
int vv_exit(void);
/* The message function and its context (null function: no messages). */
int vv_set_callback_func_g(vv_message_func_t func, void* context);

/* ---- Take ------------------------------------------------------------------- */

/* Opens a take: paths[0..count-1] are its MP4 files (UTF-8) in clip order.
 * Every file is opened and its sample index read, and the take's first
 * picture decoded, before anything changes: on an error the previous
 * take stays in place and av_info is untouched. On success the previous take
 * is dropped (VM_STOPPED when it was not stopped), av_info is filled and the
 * viewer is stopped at the new take's start offset (0). */
int vv_set_av_info(const char** paths, int32_t count, vv_av_info_t* av_info);
/* Sets the start offset of the current take (clamped to its last frame). */
int vv_set_take_info(const vv_take_info_t* take_info);

/* ---- Transport (VV_ERR_NOT_INIT, VV_ERR_NO_TAKE, else queued: VV_OK) ------- */

/* Plays from the start offset when stopped, from the frame after the shown one
 * when paused, from the shown one when scanning. Ignored while playing.
 * Reaching the end of the take stops (VM_STOPPED). */
int vv_play(void);
/* Pauses on the picture shown; ignored unless playing or scanning. */
int vv_pause(void);
/* Stops; the next vv_play begins at the start offset again. */
int vv_stop(void);
/* Fast forward (VM_FASTFORWARDED), from the start offset when stopped; the
 * end of the take stops. */
int vv_ff(void);
/* Rewind (VM_REWINDED); at the start offset the viewer pauses there. */
int vv_rew(void);
/* Each of these shows the frame named and leaves the viewer paused. */
int vv_first_frame(void);     /* the start offset */
int vv_last_frame(void);      /* the take's last frame */
int vv_plus_one_frame(void);  /* the frame after the shown one (clips continue) */
int vv_minus_one_frame(void); /* the frame before the shown one, not before the start offset */
/* Shows frame_no (clamped to the take). play 1: playing continues from it.
 * play 0: the state is kept: playing or scanning continues from it, paused
 * stays paused, stopped becomes paused. Requests that pile up while the
 * library is busy are merged: only the last one is shown. */
int vv_show_frame(int64_t frame_no, int32_t play);

/* ---- Display ---------------------------------------------------------------- */

/* Mark the pictures as full-screen ones, and back; the picture shown is
 * delivered again at once. */
int vv_show_full_screen(void);
int vv_show(void);
/* VV_AUDIO_L, VV_AUDIO_R or VV_AUDIO_BOTH; takes effect with the sound not
 * yet handed to the audio sink (the sink is kept about 1/8 s ahead). */
int vv_audio_ch(int32_t channel);
/* Changes settings while running. mode 1: the fields marked "Changeable"
 * above are taken from param (a null text keeps the current value); the
 * picture shown is delivered again at its new size. flags: 0. */
int vv_change_init_param(int32_t mode, int32_t flags, const vv_init_param_t* param);

/* ---- Thumbnails ------------------------------------------------------------- */

/* Makes the typical picture of the frame shown: answered by VM_TYPICAL_PICTURE.
 * VV_ERR_STATE when stopped. */
int vv_make_thumbnail(void);
/* Decodes frame frame_no of the take made of paths[0..count-1] (clamped to
 * the take: a negative number gives frame 0, a number past the end the last
 * frame) and answers it in *bitmap as a 24-bit thumbnail 160 pixels wide and
 * as high as the picture's display aspect asks (90 for 16:9), with the
 * status mark icon_id (VV_ICON_...) drawn into its top left corner.
 * VV_ICON_ERROR gives the error picture without reading a file (paths may
 * then be null). *bitmap is
 * filled only on success and then belongs to the caller (vv_bitmap_free). */
int vv_get_thumbnail(const char** paths, int32_t count, int64_t frame_no, int32_t icon_id,
                     vv_bitmap_t* bitmap);
/* Writes the bitmap as a Windows BMP file (BITMAPFILEHEADER and
 * BITMAPINFOHEADER, uncompressed, rows bottom-up padded to 4 bytes, 24 or 32
 * bits as the bitmap). overwrite 1 replaces an existing file; 0 refuses it
 * (VV_ERR_WRITE). The file is written beside the target and renamed over it,
 * so a failure leaves no partial file. */
int vv_bitmap_write(const char* path, const vv_bitmap_t* bitmap, int32_t overwrite);
/* Frees the bitmap's pixels and clears the record; a cleared or null record is
 * accepted. */
int vv_bitmap_free(vv_bitmap_t* bitmap);

#ifdef __cplusplus
} /* extern "C" */

/* The demultiplexer callback object (vv_set_demux_callbacker). The host keeps
 * it alive until another one is registered or vv_exit has returned. */
class IVVDemuxCallBacker
{
public:
    /* A transport job is finished: a positioning request has shown its frame,
     * a pause has landed, a stop is done, or playback or scanning reached an
     * end of the take. Called after the job's messages. Engine thread. */
    virtual void EndOfJob() = 0;
    virtual ~IVVDemuxCallBacker() = default;
};

/* Registers the callback object (null: none), at any time, also before vv_init
 * or after it failed. */
int vv_set_demux_callbacker(IVVDemuxCallBacker* callbacker);
#endif
