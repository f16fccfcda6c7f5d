// A range-checked set of a field, beside Aravis, which reaches its fake device without a network.
#include <arv.h>
#include <benchmark/benchmark.h>

#include "bench/sample.h"

namespace
{

constexpr uint32_t registerCount = 64;
constexpr uint32_t firstAddress = 0x8000;

// Each number is the low byte of a register of four.
std::string DeviceDescription()
{
    std::string text = R"(<?xml version="1.0"?><RegisterDescription ModelName="Bench" VendorName="Bench"
        StandardNameSpace="None" SchemaMajorVersion="1" SchemaMinorVersion="0" SchemaSubMinorVersion="1"
        MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
        xmlns="http://www.genicam.org/GenApi/Version_1_0">)";
    text += R"(<Category Name="Root" NameSpace="Standard">)";
    for (uint32_t n = 0; n < registerCount; ++n)
        text += "<pFeature>" + OptionName(n) + "</pFeature>";
    text += "</Category>";
    for (uint32_t n = 0; n < registerCount; ++n)
        text +=
            R"(<Integer Name=")" + OptionName(n) + R"(" NameSpace="Custom"><pValue>)" + KeyName(n) +
            R"(</pValue><Min>0</Min><Max>255</Max><Inc>1</Inc></Integer><MaskedIntReg Name=")" + KeyName(n) +
            R"(" NameSpace="Custom"><Address>)" + std::to_string(firstAddress + 4 * n) +
            "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
            "<LSB>0</LSB><MSB>7</MSB><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></MaskedIntReg>";
    return text + R"(<Port Name="Device" NameSpace="Standard"/></RegisterDescription>)";
}

void SetDeviceFeature(benchmark::State &state)
{
    const Folder folder;
    arv_set_fake_camera_genicam_filename(folder.Write("device.xml", DeviceDescription()).c_str());
    ArvDevice *device = arv_fake_device_new("bench", nullptr);
    Require(device != nullptr, "open the fake device");
    arv_device_set_range_check_policy(device, ARV_RANGE_CHECK_POLICY_ENABLE);
    const std::string name = OptionName(registerCount - 1);
    int64_t value = 0;
    for ([[maybe_unused]] auto round : state) {
        GError *error = nullptr;
        arv_device_set_integer_feature_value(device, name.c_str(), ++value % 256, &error);
        Require(error == nullptr, "set the feature");
    }
    Require(arv_device_get_integer_feature_value(device, name.c_str(), nullptr) == value % 256,
            "read the feature");
    GError *error = nullptr;
    arv_device_set_integer_feature_value(device, name.c_str(), 256, &error);
    Require(error != nullptr, "have the range checked");
    g_error_free(error);
    g_object_unref(device);
    state.counters["items"] = registerCount;
    state.counters["bytes"] = registerCount * sizeof(VReg);
}

void SetField(benchmark::State &state)
{
    std::string keys, options;
    for (uint32_t n = 0; n < registerCount; ++n) {
        keys += KeySection(n);
        options += OptionSection(n);
    }
    const Sample sample(keys, options, Registers(registerCount));
    const std::string name = OptionName(registerCount - 1);
    uint32_t value = 0;
    for ([[maybe_unused]] auto round : state)
        Require(VelkSetOption(sample.config, name.c_str(), ++value % 256) == 0, "set the option");
    state.counters["items"] = registerCount;
    state.counters["bytes"] = registerCount * sizeof(VReg);
}

} // namespace

BENCHMARK(SetField);
BENCHMARK(SetDeviceFeature);
