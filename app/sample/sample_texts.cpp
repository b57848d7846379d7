#include "app/sample/sample_texts.h"

#include <array>
#include <string_view>

namespace app {
namespace {

using std::string_view;

constexpr std::array<string_view, 48> kSentences = {
    "Good morning! Did you sleep well?",
    "I am on the train, back at seven.",
    "Can you send me the address again?",
    "Sure, see you there.",
    "Never mind, found it.",
    "That made my day.",
    "Let's talk about it tomorrow.",
    R"("Quoted", \backslashed\ and <b>not bold</b>)",
    "Grüße aus Köln! Straßenfest bis 23 Uhr.",
    "Ich hätte gern zwei Brötchen, süß oder salzig?",
    "Das passt, bis gleich.",
    "Où est passé le café ? Ça m'intéresse.",
    "On se retrouve à la gare à midi.",
    "¿Qué tal? ¡Mañana vamos a la playa!",
    "Não esqueças o pão, por favor.",
    "Perché no? È già pronto.",
    "Zażółć gęślą jaźń.",
    "Příliš žluťoučký kůň úpěl ďábelské ódy.",
    "Jó reggelt! Hogy vagy?",
    "Görüşürüz, iyi akşamlar.",
    "Привет! Как дела?",
    "Встретимся у метро в шесть.",
    "Дякую, все гаразд.",
    "Καλημέρα! Τι κάνεις;",
    "Θα τα πούμε το βράδυ.",
    "你好！今天晚上一起吃饭吗？",
    "我已经到了，在门口等你。",
    "文件收到了，谢谢。",
    "週末要不要去爬山？",
    "おはようございます。",
    "会議は三時からです。",
    "すみません、少し遅れます！",
    "안녕하세요! 잘 지내요?",
    "내일 점심 같이 먹어요.",
    "مرحبا، كيف حالك اليوم؟",
    "سأتصل بك بعد الظهر.",
    "שלום! מה שלומך?",
    "נתראה מחר בבוקר.",
    "नमस्ते! आप कैसे हैं?",
    "कल मिलते हैं।",
    "আমি আসছি, একটু অপেক্ষা করো।",
    "வணக்கம், எப்படி இருக்கிறீர்கள்?",
    "สวัสดีครับ กินข้าวหรือยัง",
    "Chào bạn, hôm nay thế nào?",
    "გამარჯობა, როგორ ხარ?",
    "Բարև, ինչպե՞ս ես։",
    "Line one\nline two\n\tand an indented third",
    "x² + y² = z², costs 5 €, −40 °C",
};

constexpr std::array<string_view, 16> kEmoji = {
    "😀",  "😂", "🙏",       "👍🏽", "❤️",   "🎉",           "🚀", "🐈‍⬛", "👩‍👩‍👧‍👦",
    "🇪🇺", "☕", "🌧️", "🥐",     "👋🏿", "🧑‍💻", "✅",
};

constexpr std::array<string_view, 20> kPersons = {
    "Ada Winter", "Jürgen Groß",    "Chloé Moreau", "Íñigo Núñez",    "Łukasz Żak",    "Анна Петрова", "Νίκος Παππάς",
    "李小龙",     "陳美玲",         "佐藤 花子",    "김민준",         "ليلى حسن",      "נועה לוי",     "प्रिया शर्मा",
    "สมชาย ใจดี",  "Nguyễn Thị Hoa", "Ahmet Yılmaz", "Olena Шевченко", "Grace O'Neill", "Kwame Mensah",
};

constexpr std::array<string_view, 10> kGroups = {
    "Family 👨‍👩‍👧", "Team Blau",   "Book club", "Футбол по средам",      "同学会", "旅行の計画",
    "Hausgemeinschaft",          "Les cousins", "العائلة",   "Running 🏃‍♀️",
};

}  // namespace

std::string makeText(Random& random) {
    std::string text(random.pick(kSentences));
    while (random.oneIn(3))
        text.append(" ").append(random.pick(kSentences));
    if (random.oneIn(4)) text.append(" ").append(random.pick(kEmoji));
    return text;
}

std::string makeNotes(Random& random) {
    std::string text;
    for (int line = 0; line < 20; ++line)
        text += makeText(random) + "\n";
    return text;
}

std::string personName(Random& random) {
    return std::string(random.pick(kPersons));
}

std::string groupName(Random& random) {
    return std::string(random.pick(kGroups));
}

}  // namespace app
