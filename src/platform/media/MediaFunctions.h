#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/frame.h>
#include <libavutil/intreadwrite.h>
#include <libavutil/log.h>
#include <libavutil/mathematics.h>
#include <libavutil/mem.h>
#include <libavutil/opt.h>
#include <libavutil/samplefmt.h>
#include <libavutil/tx.h>
#include <libswresample/swresample.h>
}

#include "platform/base/LateFunction.h"
#include "platform/media/MediaLibrary.h"

/// The functions of FFmpeg that the platform layer calls, under their own names: inside namespace
/// platform a plain call finds them here, and they find their library when they are first called.
/// Nothing links with the libraries, so a function that is missing in this list does not link.
///
/// Include this instead of the libraries' headers.
///
/// Threads: those of the function itself; the first call of all loads the libraries.
/// Real-time: as the function itself, once it has been called.
namespace platform {

// Hints for the optimizer at the libraries' declarations have no place in a type; to lose them here
// is no loss.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-attributes"
#endif

#define ORVO_MEDIA_FUNCTION(part, name) ORVO_LATE_FUNCTION(mediaLibrary::part, name)

ORVO_MEDIA_FUNCTION(util, av_calloc)
ORVO_MEDIA_FUNCTION(util, av_channel_layout_copy)
ORVO_MEDIA_FUNCTION(util, av_channel_layout_default)
ORVO_MEDIA_FUNCTION(util, av_channel_layout_from_mask)
ORVO_MEDIA_FUNCTION(util, av_channel_layout_uninit)
ORVO_MEDIA_FUNCTION(util, av_dict_free)
ORVO_MEDIA_FUNCTION(util, av_dict_set)
ORVO_MEDIA_FUNCTION(util, av_frame_alloc)
ORVO_MEDIA_FUNCTION(util, av_frame_free)
ORVO_MEDIA_FUNCTION(util, av_frame_get_buffer)
ORVO_MEDIA_FUNCTION(util, av_frame_make_writable)
ORVO_MEDIA_FUNCTION(util, av_frame_unref)
ORVO_MEDIA_FUNCTION(util, av_free)
ORVO_MEDIA_FUNCTION(util, av_freep)
ORVO_MEDIA_FUNCTION(util, av_get_packed_sample_fmt)
ORVO_MEDIA_FUNCTION(util, av_log)
ORVO_MEDIA_FUNCTION(util, av_log_format_line2)
ORVO_MEDIA_FUNCTION(util, av_log_set_callback)
ORVO_MEDIA_FUNCTION(util, av_malloc)
ORVO_MEDIA_FUNCTION(util, av_max_alloc)
ORVO_MEDIA_FUNCTION(util, av_opt_set_double)
ORVO_MEDIA_FUNCTION(util, av_opt_set_int)
ORVO_MEDIA_FUNCTION(util, av_opt_set_sample_fmt)
ORVO_MEDIA_FUNCTION(util, av_rescale)
ORVO_MEDIA_FUNCTION(util, av_rescale_q_rnd)
ORVO_MEDIA_FUNCTION(util, av_rescale_rnd)
ORVO_MEDIA_FUNCTION(util, av_sample_fmt_is_planar)
ORVO_MEDIA_FUNCTION(util, av_samples_set_silence)
ORVO_MEDIA_FUNCTION(util, av_strdup)
ORVO_MEDIA_FUNCTION(util, av_tx_init)
ORVO_MEDIA_FUNCTION(util, av_tx_uninit)

ORVO_MEDIA_FUNCTION(resample, swr_alloc_set_opts2)
ORVO_MEDIA_FUNCTION(resample, swr_convert)
ORVO_MEDIA_FUNCTION(resample, swr_free)
ORVO_MEDIA_FUNCTION(resample, swr_init)
ORVO_MEDIA_FUNCTION(resample, swr_set_matrix)

ORVO_MEDIA_FUNCTION(codec, av_get_exact_bits_per_sample)
ORVO_MEDIA_FUNCTION(codec, av_packet_alloc)
ORVO_MEDIA_FUNCTION(codec, av_packet_free)
ORVO_MEDIA_FUNCTION(codec, av_packet_get_side_data)
ORVO_MEDIA_FUNCTION(codec, av_packet_rescale_ts)
ORVO_MEDIA_FUNCTION(codec, av_packet_unref)
ORVO_MEDIA_FUNCTION(codec, avcodec_alloc_context3)
ORVO_MEDIA_FUNCTION(codec, avcodec_default_get_buffer2)
ORVO_MEDIA_FUNCTION(codec, avcodec_find_decoder)
ORVO_MEDIA_FUNCTION(codec, avcodec_find_encoder)
ORVO_MEDIA_FUNCTION(codec, avcodec_free_context)
ORVO_MEDIA_FUNCTION(codec, avcodec_get_name)
ORVO_MEDIA_FUNCTION(codec, avcodec_open2)
ORVO_MEDIA_FUNCTION(codec, avcodec_parameters_from_context)
ORVO_MEDIA_FUNCTION(codec, avcodec_parameters_to_context)
ORVO_MEDIA_FUNCTION(codec, avcodec_receive_frame)
ORVO_MEDIA_FUNCTION(codec, avcodec_receive_packet)
ORVO_MEDIA_FUNCTION(codec, avcodec_send_frame)
ORVO_MEDIA_FUNCTION(codec, avcodec_send_packet)

ORVO_MEDIA_FUNCTION(format, av_find_best_stream)
ORVO_MEDIA_FUNCTION(format, av_read_frame)
ORVO_MEDIA_FUNCTION(format, av_write_frame)
ORVO_MEDIA_FUNCTION(format, av_write_trailer)
ORVO_MEDIA_FUNCTION(format, avformat_alloc_context)
ORVO_MEDIA_FUNCTION(format, avformat_alloc_output_context2)
ORVO_MEDIA_FUNCTION(format, avformat_close_input)
ORVO_MEDIA_FUNCTION(format, avformat_find_stream_info)
ORVO_MEDIA_FUNCTION(format, avformat_free_context)
ORVO_MEDIA_FUNCTION(format, avformat_new_stream)
ORVO_MEDIA_FUNCTION(format, avformat_open_input)
ORVO_MEDIA_FUNCTION(format, avformat_write_header)
ORVO_MEDIA_FUNCTION(format, avio_alloc_context)
ORVO_MEDIA_FUNCTION(format, avio_context_free)
ORVO_MEDIA_FUNCTION(format, avio_flush)
ORVO_MEDIA_FUNCTION(format, avio_read)
ORVO_MEDIA_FUNCTION(format, avio_seek)
ORVO_MEDIA_FUNCTION(format, avio_size)
ORVO_MEDIA_FUNCTION(format, avio_write)

#undef ORVO_MEDIA_FUNCTION

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

}  // namespace platform
