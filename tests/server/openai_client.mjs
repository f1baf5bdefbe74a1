// usage: openai_client.mjs FOLDER URL FILE.wav TEXT
//
// OpenAI's own client library, from FOLDER/node_modules, against the server at URL: its models, what
// is said in the file in every format, and its errors. Fails with the first thing that is wrong.

import assert from "node:assert/strict";
import { createReadStream } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";

const [folder, url, file, text] = process.argv.slice(2);
const require = createRequire(join(folder, "package.json"));
const OpenAI = require("openai").default;
const client = new OpenAI({ apiKey: "none", baseURL: `${url}/v1`, maxRetries: 0 });

const transcribe = (options = {}) =>
    client.audio.transcriptions.create({
        file: createReadStream(file), model: "whisper-1", ...options });

const models = await client.models.list();
assert.equal(models.data.length, 1);
const model = await client.models.retrieve(models.data[0].id);
assert.equal(model.object, "model");
await assert.rejects(client.models.retrieve("other"), (error) =>
    error instanceof OpenAI.NotFoundError && error.code === "model_not_found");

assert.equal((await transcribe()).text.trim(), text);
assert.equal((await transcribe({ language: "en" })).text.trim(), text);
assert.equal((await transcribe({ response_format: "text" })).trim(), text);
const verbose = await transcribe({ response_format: "verbose_json" });
assert.equal(verbose.text.trim(), text);
assert.equal(verbose.segments.length, 1);
assert.ok(verbose.duration > 1);
assert.equal(verbose.usage.type, "duration");
assert.equal(typeof verbose.segments[0].avg_logprob, "number");
assert.match(await transcribe({ response_format: "srt" }), /^1\n00:00:0\d,\d{3} --> 00:00:/);
assert.match(await transcribe({ response_format: "vtt" }), /^WEBVTT\n\n/);

await assert.rejects(transcribe({ language: "xx" }), (error) =>
    error instanceof OpenAI.BadRequestError && error.param === "language" &&
    error.type === "invalid_request_error");
await assert.rejects(transcribe({ file: new File(["no sound"], "a.wav") }), (error) =>
    error instanceof OpenAI.BadRequestError && error.param === "file");
await assert.rejects(
    transcribe({ response_format: "verbose_json", timestamp_granularities: ["word"] }), (error) =>
        error instanceof OpenAI.BadRequestError && error.param === "timestamp_granularities[]");
console.log("all as expected");
