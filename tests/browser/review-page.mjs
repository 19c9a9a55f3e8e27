// Browser test of the review page: starts the built vantro-server on a fresh data directory,
// uploads two versions of a short video into one version stack through the HTTP API (signed in
// with `token issue`), makes a review link, and drives Debian's Chromium headless through it:
// the newest version loads and plays, the older one can be chosen and then plays instead.
//
//   node review-page.mjs <path to vantro-server> <output directory>
//
// The same checks run against a review link that already exists (the demo's, for one): its
// newest version loads and plays, and with `--versions N` the page lists N versions and the
// first of them plays when chosen.
//
//   node review-page.mjs --link <review link URL> <output directory> [--versions N]
//
// Exits 0 when every check passed; any failure (including a browser that will not start)
// prints the reason and exits 1.
import { spawn, execFileSync } from 'node:child_process';
import { createHash, randomUUID } from 'node:crypto';
import { mkdtempSync, mkdirSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { chromium } from 'playwright-core';

const kUsage = 'usage: node review-page.mjs <vantro-server> <output directory>\n' +
               '       node review-page.mjs --link <URL> <output directory> [--versions N]';
const argv = process.argv.slice(2);
const linkMode = argv[0] === '--link';
const [serverExecutable, linkUrl, outputDirectory, expectedVersions] = linkMode
    ? [null, argv[1], argv[2], argv[3] === '--versions' ? Number(argv[4]) : null]
    : [argv[0], null, argv[1], null];
if (!outputDirectory || (linkMode && !linkUrl) || Number.isNaN(expectedVersions)) {
    console.error(kUsage);
    process.exit(2);
}
const kChromium = process.env.VANTRO_CHROMIUM || '/usr/bin/chromium';
// Every wait in the browser has a deadline instead of a fixed sleep.
const kDeadlineMs = 30000;

function check(condition, message) {
    if (!condition) {
        throw new Error(message);
    }
}

function admin(dataDir, args) {
    return execFileSync(serverExecutable, [...args, '--data', dataDir], { encoding: 'utf8' }).trim();
}

/** Starts `serve` and resolves with the child and its base URL once it listens. */
function startServer(dataDir) {
    const child = spawn(serverExecutable, ['serve', '--data', dataDir, '--listen', '127.0.0.1:0'], {
        stdio: ['ignore', 'pipe', 'inherit'],
    });
    return new Promise((resolve, reject) => {
        const lines = createInterface({ input: child.stdout });
        lines.once('line', (line) => {
            const match = /^listening on (\S+)$/.exec(line);
            if (match) {
                resolve({ child, base: match[1] });
            } else {
                reject(new Error(`unexpected first line from the server: ${line}`));
            }
        });
        child.once('exit', (code) => reject(new Error(`the server exited early (${code})`)));
    });
}

function stopServer(child) {
    return new Promise((resolve) => {
        if (child.exitCode !== null) {
            resolve(child.exitCode);
            return;
        }
        child.once('exit', (code) => resolve(code));
        child.kill('SIGTERM');
    });
}

/** A short test clip: `seconds` long, with `pattern` so versions look different. */
function makeVideo(directory, name, seconds, pattern, webm) {
    const file = join(directory, name);
    const codec = webm
        ? ['-c:v', 'libvpx-vp9', '-b:v', '300k', '-deadline', 'realtime', '-cpu-used', '8']
        : ['-c:v', 'libx264', '-preset', 'veryfast', '-pix_fmt', 'yuv420p',
           '-profile:v', 'baseline', '-movflags', '+faststart'];
    execFileSync('ffmpeg', ['-hide_banner', '-loglevel', 'error', '-y', '-f', 'lavfi', '-i',
                            `${pattern}=duration=${seconds}:size=320x240:rate=25`, ...codec, file]);
    return file;
}

function sha256(bytes) {
    return createHash('sha256').update(bytes).digest('hex');
}

async function api(base, token, method, path, body, headers = {}) {
    const init = { method, headers: { Authorization: `Bearer ${token}`, ...headers } };
    if (body !== undefined) {
        if (Buffer.isBuffer(body)) {
            init.body = body;
        } else {
            init.body = JSON.stringify(body);
            init.headers['Content-Type'] = 'application/json';
        }
    }
    const reply = await fetch(base + path, init);
    const text = await reply.text();
    return { status: reply.status, json: text ? JSON.parse(text) : null, text };
}

/** Uploads `file` as the next version of the stack `stackId` in `folderId`; the new file. */
async function uploadVersion(base, token, folderId, stackId, file, name) {
    const bytes = readFileSync(file);
    const created = await api(base, token, 'POST', `/v2/assets/${folderId}/uploads`,
                              { name, filesize: bytes.length, autoversion_id: stackId });
    check(created.status === 201, `upload creation answered ${created.status}: ${created.text}`);
    const upload = created.json;
    for (let part = 1; part <= upload.part_count; ++part) {
        const slice = bytes.subarray((part - 1) * upload.part_size,
                                     Math.min(bytes.length, part * upload.part_size));
        const sent = await api(base, token, 'PUT', `/v2/uploads/${upload.upload_id}/parts/${part}`,
                               slice, { 'X-Content-SHA256': sha256(slice) });
        check(sent.status === 200, `part ${part} answered ${sent.status}: ${sent.text}`);
    }
    const completed = await api(base, token, 'POST', `/v2/uploads/${upload.upload_id}/complete`,
                                { sha256: sha256(bytes) });
    check(completed.status === 201, `completion answered ${completed.status}: ${completed.text}`);
    return completed.json;
}

/** Waits until the page's player knows its duration; returns what the player has loaded. */
async function loadedPlayer(page) {
    await page.waitForFunction(() => {
        const video = document.querySelector('video');
        return video && video.readyState >= 1 && video.duration > 0;
    }, null, { timeout: kDeadlineMs });
    return page.evaluate(() => {
        const video = document.querySelector('video');
        return { src: video.currentSrc, duration: video.duration };
    });
}

/** Plays muted until currentTime passes one second. */
async function playOneSecond(page) {
    await page.evaluate(() => {
        const video = document.querySelector('video');
        video.muted = true;
        return video.play();
    });
    await page.waitForFunction(() => document.querySelector('video').currentTime >= 1, null,
                               { timeout: kDeadlineMs, polling: 50 });
}

async function launchBrowser() {
    const browser = await chromium.launch({
        executablePath: kChromium,
        headless: true,
        // Containers often run as root, where Chromium's sandbox cannot start.
        args: process.getuid && process.getuid() === 0 ? ['--no-sandbox'] : [],
    });
    const page = await browser.newPage({ viewport: { width: 1280, height: 800 } });
    return { browser, page };
}

/**
 * Opens the review page at `url` and checks that its newest version loads and plays, then that
 * choosing version 1 loads and plays that one. `expected` may name each version's media id and
 * duration, and how many versions the page lists.
 */
async function checkReviewPage(page, url, expected) {
    const opened = await page.goto(url);
    check(opened.status() === 200, `the review page answered ${opened.status()}`);
    const newest = await loadedPlayer(page);
    console.log(`newest: ${newest.src} (${newest.duration.toFixed(2)} s)`);
    check(/\/media\/[^/]+$/.test(newest.src), `the player's source is not review media: ${newest.src}`);
    if (expected.newestId) {
        check(newest.src.endsWith(`/media/${expected.newestId}`), `the page plays ${newest.src}, not the newest version`);
    }
    if (expected.newestSeconds) {
        check(Math.abs(newest.duration - expected.newestSeconds) < 0.5,
              `the newest version should last ${expected.newestSeconds} s, not ${newest.duration}`);
    }
    await playOneSecond(page);

    const listed = await page.locator('a[data-version]').count();
    if (expected.versions) {
        check(listed === expected.versions, `the page lists ${listed} versions, not ${expected.versions}`);
    }
    if (listed < 2) {
        return;
    }
    await Promise.all([page.waitForURL(/version=1/, { timeout: kDeadlineMs }),
                       page.click('a[data-version="1"]')]);
    const previous = await loadedPlayer(page);
    console.log(`older: ${previous.src} (${previous.duration.toFixed(2)} s)`);
    check(previous.src !== newest.src, 'choosing version 1 left the newest version in the player');
    if (expected.olderId) {
        check(previous.src.endsWith(`/media/${expected.olderId}`), `after choosing v1 the page plays ${previous.src}`);
    }
    if (expected.olderSeconds) {
        check(Math.abs(previous.duration - expected.olderSeconds) < 0.5,
              `v1 should last ${expected.olderSeconds} s, not ${previous.duration}`);
    }
    await playOneSecond(page);
}

async function screenshot(page) {
    const file = join(outputDirectory, 'review-page.png');
    await page.screenshot({ path: file, fullPage: true });
    console.log(`screenshot: ${file}`);
}

/** The checks against a review link that exists already. */
async function checkLink() {
    mkdirSync(outputDirectory, { recursive: true });
    const { browser, page } = await launchBrowser();
    try {
        await checkReviewPage(page, linkUrl, { versions: expectedVersions });
        await screenshot(page);
    } finally {
        await browser.close();
    }
}

/** The self-contained run: its own server, two uploaded versions and a link. */
async function main() {
    mkdirSync(outputDirectory, { recursive: true });
    const work = mkdtempSync(join(tmpdir(), 'vantro-browser-'));
    let server = null;
    let browser = null;
    try {
        const launched = await launchBrowser();
        browser = launched.browser;
        const { page } = launched;
        const mp4 = await page.evaluate(
            () => document.createElement('video').canPlayType('video/mp4; codecs="avc1.42E01E"'));
        const webm = mp4 === '';
        console.log(`H.264 MP4 in this browser: "${mp4}"${webm ? '; using VP9 WebM' : ''}`);
        const extension = webm ? 'webm' : 'mp4';
        const older = makeVideo(work, `v1.${extension}`, 3, 'testsrc', webm);
        const newer = makeVideo(work, `v2.${extension}`, 5, 'testsrc2', webm);

        const dataDir = join(work, 'data');
        admin(dataDir, ['init']);
        admin(dataDir, ['user', 'add', '--username', 'ann', '--password', 'pw',
                        '--password-iterations', '1000']);
        const account = admin(dataDir, ['account', 'add', '--name', 'Acme', '--owner', 'ann',
                                        '--storage-limit', '1000000000']);
        const team = admin(dataDir, ['team', 'add', '--account', account, '--name', 'Editors',
                                     '--member', 'ann']);
        const [project, root] = admin(dataDir, ['project', 'add', '--team', team, '--name',
                                                'Alpha']).split('\n');
        const token = JSON.parse(admin(dataDir, ['token', 'issue', '--user', 'ann'])).access_token;

        server = await startServer(dataDir);
        const { base } = server;
        const stackId = randomUUID();
        const name = `Trailer.${extension}`;
        const first = await uploadVersion(base, token, root, stackId, older, name);
        const second = await uploadVersion(base, token, root, stackId, newer, name);
        check(first.version === 1 && second.version === 2,
              `expected versions 1 and 2, got ${first.version} and ${second.version}`);

        const link = await api(base, token, 'POST', `/v2/projects/${project}/review_links`,
                               { name: 'Browser test' });
        check(link.status === 201, `link creation answered ${link.status}: ${link.text}`);
        const added = await api(base, token, 'POST', `/v2/review_links/${link.json.id}/assets`,
                                { asset_ids: [stackId] });
        check(added.status === 200, `adding the stack answered ${added.status}: ${added.text}`);

        await checkReviewPage(page, link.json.url, {
            newestId: second.id, newestSeconds: 5, olderId: first.id, olderSeconds: 3, versions: 2,
        });
        await screenshot(page);
    } finally {
        if (browser) {
            await browser.close();
        }
        if (server) {
            const code = await stopServer(server.child);
            check(code === 0, `the server exited with ${code}`);
        }
        rmSync(work, { recursive: true, force: true });
    }
}

(linkMode ? checkLink() : main()).then(
    () => console.log('review page: all checks passed'),
    (error) => {
        console.error(`review page: ${error.stack || error}`);
        process.exit(1);
    });
