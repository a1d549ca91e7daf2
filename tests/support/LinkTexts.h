#pragma once

#include <string_view>

/// Texts on both links and of the shared storage that several tests use, byte for byte.
namespace exchanges {

inline constexpr std::string_view GET_ALL = R"({"action":"RETICLES_GET_ALL"})";

/// What a list request looks like on the RTOS link.
inline constexpr std::string_view LIST_REQUEST = R"([
	{
		"msg_id" : 76,
		"param_get" : ""
	}
])";

inline constexpr std::string_view DONE = R"([{"ret_val":0}])";

/// The shortest exchange there is: a refused list request.
inline constexpr std::string_view FULL = R"([{"ret_val":6}])";
inline constexpr std::string_view FULL_REPLY = R"({
	"result" : "RETICLES_COUNT_OUT_OF_BOUNDS"
})";

/// An RTOS list answer, a list file and a reticle file that together give ONE_DOT_REPLY.
inline constexpr std::string_view LIST_ANSWER = R"([{"param":"list.json","ret_val":0}])";
inline constexpr std::string_view ONE_DOT_LIST = R"([{"reticles":[
{"index":1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":1,"isActive":0}]}])";
inline constexpr std::string_view DOT = R"(<circle fill="user_color"/>)";

inline constexpr std::string_view ONE_DOT_REPLY = R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
})";
/// The reply to a change that asked for nothing.
inline constexpr std::string_view ONE_DOT_REPLY_WITHOUT_RESULT = R"({
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
})";

}  // namespace exchanges
