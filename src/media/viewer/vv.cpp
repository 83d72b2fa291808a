// The C interface of the viewer library over the player and the thumbnailer.
#include "media/viewer/vv.h"

#include "media/viewer/Bitmap.h"
#include "media/viewer/FrameConverter.h"
#include "media/viewer/Player.h"
#include "media/viewer/Thumbnailer.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace {

using vv::Player;
using Request = vv::Player::Request;

// The library's one player. The lock is held only briefly: never while a
// player's threads are joined, so that a callback calling in cannot block.
struct Library
{
    std::mutex mutex;
    std::unique_ptr<Player> player;
    IVVDemuxCallBacker* callbacker = nullptr;
    vv::Log log;
};

Library& library()
{
    static Library instance;
    return instance;
}

bool pathsValid(const char** paths, int32_t count)
{
    if (!paths || count <= 0)
        return false;
    for (int32_t i = 0; i < count; ++i) {
        if (!paths[i] || !*paths[i])
            return false;
    }
    return true;
}

std::vector<std::string> pathList(const char** paths, int32_t count)
{
    return std::vector<std::string>(paths, paths + count);
}

// Runs fn on the player under the library's lock; VV_ERR_NOT_INIT outside
// vv_init and vv_exit.
template <class Fn> int withPlayer(Fn fn)
{
    Library& lib = library();
    std::lock_guard lock(lib.mutex);
    if (!lib.player)
        return VV_ERR_NOT_INIT;
    return fn(*lib.player);
}

// A transport request for the player's take.
int request(Request what, int64_t frame = 0, int flag = 0)
{
    return withPlayer([&](Player& player) {
        if (!player.hasTake())
            return VV_ERR_NO_TAKE;
        player.post(what, frame, flag);
        return VV_OK;
    });
}

// Opens every clip of a take and decodes its first picture, so that a take
// that cannot be shown is refused before it replaces the current one.
int openTake(const std::vector<std::string>& paths, std::unique_ptr<vv::TakeVideo>& video,
             std::unique_ptr<vv::TakeAudio>& audio, vv_av_info_t& info)
{
    if (const int rc = vv::TakeVideo::open(paths, vv::VideoClip::Use::Playback, video); rc != VV_OK)
        return rc;
    vv::FramePtr first = vv::makeFrame();
    if (!first)
        return VV_ERR_MEMORY;
    int64_t frame = 0;
    if (const int rc = video->seek(0); rc != VV_OK)
        return rc;
    if (const int rc = video->decode(first.get(), frame); rc != VV_OK)
        return rc == vv::kEnd ? VV_ERR_DECODE : rc;
    if (const int rc = vv::TakeAudio::open(*video, audio); rc != VV_OK)
        return rc;
    const AVRational rate = video->frameRate();
    const AVRational aspect = vv::FrameConverter::displayAspect(first.get());
    info = vv_av_info_t{};
    info.width = video->clip(0).width();
    info.height = video->clip(0).height();
    info.frame_rate_num = rate.num;
    info.frame_rate_den = rate.den;
    info.interlaced = first->interlaced_frame ? 1 : 0;
    info.audio_channels = audio ? audio->channels() : 0;
    info.clip_count = video->clipCount();
    info.total_frames = video->frameCount();
    info.aspect_num = aspect.num;
    info.aspect_den = aspect.den;
    return VV_OK;
}

} // namespace

extern "C" {

int vv_init(const vv_init_param_t* param, const vv_display_t* display, int32_t flags)
{
    if (!param || !display)
        return VV_ERR_PARAM;
    Library& lib = library();
    std::lock_guard lock(lib.mutex);
    if (lib.player)
        return VV_ERR_STATE;
    const vv::Settings settings = vv::Settings::from(*param);
    lib.log.open(settings.logLevel, settings.logFilePath, settings.logFileSizeKiB * 1024);
    lib.log.write(vv::Log::kEvent, "vv_init low resolution " + std::to_string(settings.lowResolution) +
                                       ", audio " + (display->audio_sink.write ? "on" : "silent"));
    lib.player = std::make_unique<Player>(settings, *display, lib.log, lib.callbacker);
    return VV_OK;
}

int vv_exit(void)
{
    Library& lib = library();
    std::unique_ptr<Player> player;
    {
        std::lock_guard lock(lib.mutex);
        if (!lib.player)
            return VV_ERR_NOT_INIT;
        if (lib.player->isOwnThread())
            return VV_ERR_STATE;
        player = std::move(lib.player);
    }
    player.reset();
    lib.log.write(vv::Log::kEvent, "vv_exit");
    lib.log.close();
    return VV_OK;
}

int vv_set_callback_func_g(vv_message_func_t func, void* context)
{
    return withPlayer([&](Player& player) {
        player.setMessageFunc(func, context);
        return VV_OK;
    });
}

int vv_set_av_info(const char** paths, int32_t count, vv_av_info_t* av_info)
{
    if (!pathsValid(paths, count) || !av_info)
        return VV_ERR_PARAM;
    Library& lib = library();
    {
        std::lock_guard lock(lib.mutex);
        if (!lib.player)
            return VV_ERR_NOT_INIT;
    }
    const std::vector<std::string> list = pathList(paths, count);
    for (const std::string& path : list)
        lib.log.write(vv::Log::kEvent, "vv_set_av_info " + path);
    std::unique_ptr<vv::TakeVideo> video;
    std::unique_ptr<vv::TakeAudio> audio;
    vv_av_info_t info{};
    if (const int rc = openTake(list, video, audio, info); rc != VV_OK) {
        lib.log.write(vv::Log::kError, "vv_set_av_info failed: " + std::to_string(rc));
        return rc;
    }
    std::lock_guard lock(lib.mutex);
    if (!lib.player)
        return VV_ERR_NOT_INIT;
    lib.player->setTake(std::move(video), std::move(audio));
    *av_info = info;
    return VV_OK;
}

int vv_set_take_info(const vv_take_info_t* take_info)
{
    if (!take_info)
        return VV_ERR_PARAM;
    return request(Request::StartOffset, int64_t(take_info->start_offset));
}

int vv_play(void)
{
    return request(Request::Play);
}

int vv_pause(void)
{
    return request(Request::Pause);
}

int vv_stop(void)
{
    return request(Request::Stop);
}

int vv_ff(void)
{
    return request(Request::FastForward);
}

int vv_rew(void)
{
    return request(Request::Rewind);
}

int vv_first_frame(void)
{
    return request(Request::FirstFrame);
}

int vv_last_frame(void)
{
    return request(Request::LastFrame);
}

int vv_plus_one_frame(void)
{
    return request(Request::PlusOne);
}

int vv_minus_one_frame(void)
{
    return request(Request::MinusOne);
}

int vv_show_frame(int64_t frame_no, int32_t play)
{
    return request(Request::ShowFrame, frame_no, play == 1 ? 1 : 0);
}

int vv_show_full_screen(void)
{
    return withPlayer([](Player& player) {
        player.setFullScreen(true);
        return VV_OK;
    });
}

int vv_show(void)
{
    return withPlayer([](Player& player) {
        player.setFullScreen(false);
        return VV_OK;
    });
}

int vv_audio_ch(int32_t channel)
{
    if (channel != VV_AUDIO_L && channel != VV_AUDIO_R && channel != VV_AUDIO_BOTH)
        return VV_ERR_PARAM;
    return withPlayer([&](Player& player) {
        player.setAudioChoice(channel);
        return VV_OK;
    });
}

int vv_change_init_param(int32_t mode, int32_t flags, const vv_init_param_t* param)
{
    if (mode != 1 || !param)
        return VV_ERR_PARAM;
    return withPlayer([&](Player& player) {
        player.changeSettings(*param);
        return VV_OK;
    });
}

int vv_make_thumbnail(void)
{
    return withPlayer([](Player& player) {
        if (!player.hasTake())
            return VV_ERR_NO_TAKE;
        if (player.state() == VM_STOPPED)
            return VV_ERR_STATE;
        player.post(Request::MakeThumbnail);
        return VV_OK;
    });
}

int vv_get_thumbnail(const char** paths, int32_t count, int64_t frame_no, int32_t icon_id,
                     vv_bitmap_t* bitmap)
{
    if (!bitmap || (icon_id != VV_ICON_ERROR && !pathsValid(paths, count)))
        return VV_ERR_PARAM;
    const std::vector<std::string> list =
        pathsValid(paths, count) ? pathList(paths, count) : std::vector<std::string>();
    const int rc = vv::Thumbnailer::make(list, frame_no, icon_id, *bitmap);
    if (rc != VV_OK)
        library().log.write(vv::Log::kError, "vv_get_thumbnail failed: " + std::to_string(rc) +
                                                 (list.empty() ? std::string() : " " + list.front()));
    return rc;
}

int vv_bitmap_write(const char* path, const vv_bitmap_t* bitmap, int32_t overwrite)
{
    if (!path || !bitmap)
        return VV_ERR_PARAM;
    return vv::Bitmap::writeBmp(path, *bitmap, overwrite != 0);
}

int vv_bitmap_free(vv_bitmap_t* bitmap)
{
    if (bitmap)
        vv::Bitmap::release(*bitmap);
    return VV_OK;
}

} // extern "C"

int vv_set_demux_callbacker(IVVDemuxCallBacker* callbacker)
{
    Library& lib = library();
    std::lock_guard lock(lib.mutex);
    lib.callbacker = callbacker;
    if (lib.player)
        lib.player->setCallbacker(callbacker);
    return VV_OK;
}
